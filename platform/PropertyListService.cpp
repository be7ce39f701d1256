#include "platform/PropertyListService.h"

#include "platform/FileManager.h"
#include "platform/Operation.h"
#include "platform/base/ServiceSlot.h"

#include <utility>

namespace platform {
namespace {

constinit ServiceSlot<PropertyListService> slot{"PropertyList"};

PropertyListResult readFile(const PropertyListService& service, const std::string& path,
                            std::uint64_t maximumBytes) {
    const OpenFileResult opened = fileManager().openFile(path);
    if (!opened)
        return {std::nullopt, {0, 0, opened.reason}};
    const std::string tooLarge =
        "The file is larger than " + std::to_string(maximumBytes) + " bytes.";
    if (opened.file->size() > maximumBytes)
        return {std::nullopt, {0, 0, tooLarge}};

    // The file may grow while it is read, and some files report a size of 0.
    std::uint64_t left = maximumBytes;
    bool grewTooLarge = false;
    bool failed = false;
    const auto source = [&](char* buffer, std::size_t size) -> std::optional<std::size_t> {
        const auto count = opened.file->read(buffer, size);
        failed = !count;
        grewTooLarge = count && *count > left;
        if (failed || grewTooLarge)
            return std::nullopt;
        left -= *count;
        return count;
    };
    PropertyListResult result = service.parse(source);
    if (failed || grewTooLarge)
        return {std::nullopt, {0, 0, failed ? "The file could not be read completely." : tooLarge}};
    return result;
}

} // namespace

std::string PropertyListError::text() const {
    if (line == 0)
        return reason;
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + reason;
}

PropertyListService::~PropertyListService() = default;

PropertyListResult PropertyListService::parse(std::string_view bytes) const {
    return parse([bytes](char* buffer, std::size_t size) mutable {
        const std::size_t count = bytes.copy(buffer, size);
        bytes.remove_prefix(count);
        return std::optional(count);
    });
}

PropertyListResult PropertyListService::read(const std::string& path,
                                             std::uint64_t maximumBytes) const {
    return guardedOperation([&] { return readFile(*this, path, maximumBytes); },
                            PropertyListResult{std::nullopt, {0, 0, "out of memory"}});
}

std::optional<PropertyList::Array> PropertyListService::readArray(const std::string& path) const {
    return guardedOperation([&]() -> std::optional<PropertyList::Array> {
        PropertyListResult result = read(path);
        if (!result || !result.value->array())
            return std::nullopt;
        return std::move(*result.value->array());
    });
}

bool PropertyListService::writeArray(const std::string& path,
                                     const PropertyList::Array& array) const {
    return guardedStep([&] {
        const std::optional<std::string> bytes = serialize(array);
        return bytes && fileManager().writeFileAtomically(path, *bytes);
    });
}

PropertyListService& propertyLists() {
    return slot.get();
}

template <>
PropertyListService* exchangeService<PropertyListService>(PropertyListService* service) {
    return slot.exchange(service);
}

} // namespace platform
