#include "platform/expat/ExpatPropertyLists.h"

#include "platform/Operation.h"
#include "platform/PropertyListService.h"
#include "platform/expat/XmlReader.h"
#include "platform/expat/XmlWriter.h"
#include "platform/values/PropertyList.h"

namespace platform::expat {
namespace {

class ExpatPropertyLists final : public PropertyListService {
  public:
    using PropertyListService::parse;
    PropertyListResult parse(const ByteSource& source) const override {
        return guardedOperation([&] { return readXml(source); },
                                PropertyListResult{std::nullopt, {0, 0, "out of memory"}});
    }
    std::optional<std::string> serialize(const PropertyList& value) const override {
        return guardedOperation([&] { return writeXml(value); });
    }
    std::optional<std::string> serialize(const PropertyList::Array& array) const override {
        return guardedOperation([&] { return writeXml(array); });
    }
};

} // namespace

void install() {
    static ExpatPropertyLists service;
    exchangeService<PropertyListService>(&service);
}

} // namespace platform::expat
