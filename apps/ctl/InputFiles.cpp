#include "apps/ctl/InputFiles.h"

#include "apps/shared/AbsolutePath.h"
#include "apps/shared/Output.h"
#include "platform/PropertyListService.h"

#include <filesystem>
#include <system_error>

using platform::PropertyList;

namespace apps {

bool isSameFile(const std::string& first, const std::string& second) {
    std::error_code ignored;
    return absolutePath(first) == absolutePath(second) ||
           std::filesystem::equivalent(first, second, ignored);
}

std::optional<PropertyList> readPropertyList(const std::string& path) {
    platform::PropertyListResult result = platform::propertyLists().read(absolutePath(path));
    if (result)
        return std::move(result.value);
    printError(path + ": " + result.error.text());
    return std::nullopt;
}

std::optional<PropertyList::Array> readArray(const std::string& path) {
    std::optional<PropertyList> value = readPropertyList(path);
    if (!value)
        return std::nullopt;
    if (PropertyList::Array* array = value->array())
        return std::move(*array);
    printError(path + ": the root of the property list is not an array");
    return std::nullopt;
}

} // namespace apps
