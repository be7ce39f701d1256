#include "apps/ctl/InputFiles.h"

#include "apps/shared/AbsolutePath.h"
#include "apps/shared/Output.h"
#include "platform/PropertyListService.h"

#include <filesystem>
#include <system_error>

using platform::PropertyList;

namespace apps {

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
    refuse(path + ": " + result.error.text());
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

} // namespace apps
