#include "apps/ctl/InputFiles.h"

#include "apps/ctl/Output.h"
#include "platform/PropertyListService.h"

#include <filesystem>
#include <system_error>

using platform::PropertyList;

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const std::string absolute = std::filesystem::absolute(path, error).string();
    return error ? path : absolute;
}

bool samePlace(const std::string& first, const std::string& second) {
    std::error_code ignored;
    return std::filesystem::path(absolutePath(first)).lexically_normal() ==
               std::filesystem::path(absolutePath(second)).lexically_normal() ||
           std::filesystem::equivalent(first, second, ignored);
}

std::optional<PropertyList> readPropertyList(const std::string& path) {
    platform::PropertyListResult result = platform::propertyLists().read(absolutePath(path));
    if (result)
        return std::move(result.value);
    const auto& [line, column, reason] = result.error;
    std::string place = path;
    if (line > 0)
        place += ":" + std::to_string(line) + ":" + std::to_string(column);
    refuse(place + ": " + reason);
    return std::nullopt;
}

std::optional<PropertyList::Array> readList(const std::string& path) {
    std::optional<PropertyList> value = readPropertyList(path);
    if (!value)
        return std::nullopt;
    if (PropertyList::Array* list = value->array())
        return std::move(*list);
    refuse(path + ": no list: the root of this property list is no array");
    return std::nullopt;
}
