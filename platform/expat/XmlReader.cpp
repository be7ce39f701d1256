#include "platform/expat/XmlReader.h"

#include "platform/expat/Scalars.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <new>

namespace platform::expat {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 16;
/// Bytes; limits the cost of long tags: Expat parses an incomplete tag again with each piece.
constexpr std::size_t kLongestToken = std::size_t{1} << 20;

enum class Element {
    Plist,
    Array,
    Dictionary,
    Key,
    String,
    Integer,
    Real,
    True,
    False,
    Date,
    Data
};

struct ElementName {
    const char* name;
    Element element;
};
/// Sorted by frequency.
constexpr std::array<ElementName, 11> kElements{{{"string", Element::String},
                                                 {"key", Element::Key},
                                                 {"array", Element::Array},
                                                 {"dict", Element::Dictionary},
                                                 {"integer", Element::Integer},
                                                 {"real", Element::Real},
                                                 {"true", Element::True},
                                                 {"false", Element::False},
                                                 {"date", Element::Date},
                                                 {"data", Element::Data},
                                                 {"plist", Element::Plist}}};

std::optional<Element> elementWithName(const char* name) {
    for (const ElementName& candidate : kElements)
        if (candidate.name[0] == name[0] && std::strcmp(candidate.name, name) == 0)
            return candidate.element;
    return std::nullopt;
}

std::string shown(std::string_view name) {
    constexpr std::size_t kShownBytes = 40;
    return std::string(name.substr(0, kShownBytes)) + (name.size() > kShownBytes ? "..." : "");
}

std::string quoted(std::string_view name) {
    return "<" + shown(name) + ">";
}

bool isContainer(Element element) {
    return element <= Element::Dictionary;
}
bool hasText(Element element) {
    return !isContainer(element) && element != Element::True && element != Element::False;
}

bool isSpace(std::string_view text) {
    return std::ranges::all_of(text, [](char character) {
        return character == '\t' || character == '\n' || character == ' ' || character == '\r';
    });
}

/// If @p start is the start of a property list that is not XML, returns an error that names its
/// format.
std::optional<std::string> errorForOtherFormat(std::string_view start) {
    constexpr const char* kConvert = " property lists are not supported; convert the file to XML";
    if (start.starts_with("bplist"))
        return std::string("Binary") + kConvert;
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (start.starts_with(kByteOrderMark))
        start.remove_prefix(kByteOrderMark.size());
    start.remove_prefix(std::min(start.find_first_not_of(" \t\r\n"), start.size()));
    const auto separator = start.find_first_of("=:");
    const bool isJson = separator != std::string_view::npos && start[separator] == ':';
    if (start.starts_with("// !$*UTF8*$!") || start.starts_with('(') ||
        (start.starts_with('{') && !isJson))
        return std::string("Old-style (text)") + kConvert;
    return std::nullopt;
}

/// Detects unpaired surrogates in UTF-16. Expat does not: it accepts any character as the second
/// half of a pair. Ignores other encodings.
class SurrogateCheck {
  public:
    /// Checks the next bytes. Returns false for an unpaired surrogate.
    bool accept(std::string_view bytes) {
        for (const char character : bytes) {
            if (order_ == Order::None)
                return true;
            const unsigned byte = static_cast<unsigned char>(character);
            if (count_++ % 2 == 0) {
                previous_ = byte;
                continue;
            }
            if (count_ == 2)
                order_ = orderOf(previous_, byte);
            const bool big = order_ == Order::Big;
            const unsigned half = (big ? previous_ : byte) & 0xFCU;
            if (order_ != Order::None && secondIsDue_ != (half == 0xDC))
                return false;
            secondIsDue_ = half == 0xD8;
        }
        return true;
    }

  private:
    enum class Order { Unknown, None, Little, Big };
    static Order orderOf(unsigned first, unsigned second) {
        if ((first == 0xFF && second == 0xFE) || second == 0)
            return Order::Little;
        return (first == 0xFE && second == 0xFF) || first == 0 ? Order::Big : Order::None;
    }

    Order order_ = Order::Unknown;
    std::uint64_t count_ = 0;
    unsigned previous_ = 0;
    bool secondIsDue_ = false;
};

class Reader {
  public:
    Reader();
    PropertyListResult run(const PropertyListService::ByteSource& source);

  private:
    /// An element whose end tag has not been read. The values and keys that it contains are on the
    /// stacks from these indices on.
    struct Open {
        Element element;
        std::size_t firstValue;
        std::size_t firstKey;
    };
    struct ParserCloser {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };

    /// Calls a member function from Expat, which does not support exceptions.
    template <auto Member, class... Arguments>
    static void call(void* reader, Arguments... arguments) noexcept;

    void begin(const XML_Char* name, const XML_Char** attributes);
    void end(const XML_Char* name);
    void text(const XML_Char* text, int length);
    void entityDeclaration(const XML_Char* name, int, const XML_Char*, int, const XML_Char*,
                           const XML_Char*, const XML_Char*, const XML_Char*);
    void attributeDeclaration(const XML_Char* element, const XML_Char*, const XML_Char*,
                              const XML_Char*, int);
    void skippedEntity(const XML_Char* name, int);

    bool mayBegin(Element element, const char* name);
    void add(Element element, std::optional<PropertyList> value);
    void endArray(const Open& open);
    void endDictionary(const Open& open);
    void endPlist(const Open& open);
    std::size_t unfinishedBytes() const;
    void fail(std::string reason);
    PropertyListResult result();

    std::unique_ptr<XML_ParserStruct, ParserCloser> parser_;
    SurrogateCheck surrogates_;
    std::uint64_t fed_ = 0;
    std::vector<Open> open_;
    std::vector<PropertyList> values_;
    std::vector<std::string> keys_;
    std::string text_;
    bool failed_ = false;
    bool outOfMemory_ = false;
    PropertyListError error_;
};

Reader::Reader() : parser_(XML_ParserCreate(nullptr)) {
    if (!parser_)
        throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), call<&Reader::begin, const XML_Char*, const XML_Char**>,
                          call<&Reader::end, const XML_Char*>);
    XML_SetCharacterDataHandler(parser_.get(), call<&Reader::text, const XML_Char*, int>);
    XML_SetEntityDeclHandler(
        parser_.get(), call<&Reader::entityDeclaration, const XML_Char*, int, const XML_Char*, int,
                            const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*>);
    XML_SetAttlistDeclHandler(parser_.get(),
                              call<&Reader::attributeDeclaration, const XML_Char*, const XML_Char*,
                                   const XML_Char*, const XML_Char*, int>);
    XML_SetSkippedEntityHandler(parser_.get(), call<&Reader::skippedEntity, const XML_Char*, int>);
    // Declarations are rejected, so this only makes Expat report references to parameter entities.
    XML_SetParamEntityParsing(parser_.get(), XML_PARAM_ENTITY_PARSING_ALWAYS);
}

template <auto Member, class... Arguments>
void Reader::call(void* reader, Arguments... arguments) noexcept {
    auto& self = *static_cast<Reader*>(reader);
    if (self.failed_)
        return;
    try {
        (self.*Member)(arguments...);
    } catch (const std::bad_alloc&) {
        self.outOfMemory_ = true;
        self.fail({});
    }
}

PropertyListResult Reader::run(const PropertyListService::ByteSource& source) {
    for (;;) {
        const std::size_t size = std::max(kPieceBytes, unfinishedBytes());
        void* buffer = XML_GetBuffer(parser_.get(), static_cast<int>(size));
        if (!buffer)
            throw std::bad_alloc();
        const auto count = source(static_cast<char*>(buffer), size);
        if (!count) {
            fail("The bytes could not be read completely");
            return result();
        }
        const std::string_view piece(static_cast<const char*>(buffer), *count);
        if (auto error = fed_ == 0 ? errorForOtherFormat(piece) : std::nullopt) {
            fail(std::move(*error));
            return result();
        }
        fed_ += *count;
        if (!surrogates_.accept(piece)) {
            fail("Unpaired surrogate");
            return result();
        }
        const auto status =
            XML_ParseBuffer(parser_.get(), static_cast<int>(*count), *count == 0 ? 1 : 0);
        if (outOfMemory_ || XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY)
            throw std::bad_alloc();
        if (status != XML_STATUS_OK && !failed_)
            fail(XML_ErrorString(XML_GetErrorCode(parser_.get())));
        if (!failed_ && unfinishedBytes() > kLongestToken)
            fail("A tag or comment has more than " + std::to_string(kLongestToken) + " bytes");
        if (failed_ || *count == 0)
            return result();
    }
}

std::size_t Reader::unfinishedBytes() const {
    const XML_Index parsed = XML_GetCurrentByteIndex(parser_.get());
    return parsed < 0 ? 0 : static_cast<std::size_t>(fed_ - static_cast<std::uint64_t>(parsed));
}

void Reader::fail(std::string reason) {
    failed_ = true;
    const auto clamped = [](XML_Size number) {
        return static_cast<int>(std::min<XML_Size>(number, std::numeric_limits<int>::max() - 1));
    };
    error_.line = clamped(XML_GetCurrentLineNumber(parser_.get()));
    error_.column = clamped(XML_GetCurrentColumnNumber(parser_.get())) + 1;
    error_.reason = std::move(reason);
    XML_StopParser(parser_.get(), XML_FALSE);
}

PropertyListResult Reader::result() {
    if (failed_)
        return {std::nullopt, std::move(error_)};
    return {std::move(values_.front()), {}};
}

void Reader::begin(const XML_Char* name, const XML_Char**) {
    const auto element = elementWithName(name);
    if (!element)
        return fail("Unknown element " + quoted(name));
    if (!mayBegin(*element, name))
        return;
    open_.push_back({*element, values_.size(), keys_.size()});
    text_.clear();
}

bool Reader::mayBegin(Element element, const char* name) {
    const auto refuse = [this](std::string reason) {
        fail(std::move(reason));
        return false;
    };
    if (open_.empty())
        return element == Element::Plist || refuse("The root is " + quoted(name) + ", not <plist>");
    const Open& outer = open_.back();
    if (element == Element::Plist || !isContainer(outer.element))
        return refuse(quoted(name) + " in the wrong place");
    if (open_.size() > PropertyListService::kMaximumDepth)
        return refuse("Nested more than " + std::to_string(PropertyListService::kMaximumDepth) +
                      " deep");
    const std::size_t values = values_.size() - outer.firstValue;
    if (outer.element == Element::Plist && values > 0)
        return refuse("More than one value in <plist>");
    const bool keyIsDue =
        outer.element == Element::Dictionary && keys_.size() - outer.firstKey == values;
    if (keyIsDue != (element == Element::Key))
        return refuse(keyIsDue ? quoted(name) + " without a <key>" : "<key> in the wrong place");
    return true;
}

void Reader::text(const XML_Char* text, int length) {
    const std::string_view piece(text, static_cast<std::size_t>(length));
    if (hasText(open_.back().element))
        text_.append(piece);
    else if (!isSpace(piece))
        fail("Text in the wrong place");
}

void Reader::end(const XML_Char*) {
    const Open open = open_.back();
    open_.pop_back();
    switch (open.element) {
    case Element::Plist:
        return endPlist(open);
    case Element::Array:
        return endArray(open);
    case Element::Dictionary:
        return endDictionary(open);
    case Element::Key:
        keys_.push_back(text_);
        return;
    case Element::String:
        values_.emplace_back(std::string_view(text_));
        return;
    case Element::True:
    case Element::False:
        values_.emplace_back(open.element == Element::True);
        return;
    case Element::Integer:
        return add(open.element, parseInteger(text_));
    case Element::Real:
        return add(open.element, parseReal(text_));
    case Element::Date:
        return add(open.element, parseDate(text_));
    case Element::Data:
        return add(open.element, parseData(text_));
    }
}

void Reader::add(Element element, std::optional<PropertyList> value) {
    if (value) {
        values_.push_back(std::move(*value));
        return;
    }
    const char* name = std::ranges::find(kElements, element, &ElementName::element)->name;
    fail("Malformed or out of range: " + quoted(name));
}

void Reader::endArray(const Open& open) {
    const auto first = values_.begin() + static_cast<std::ptrdiff_t>(open.firstValue);
    PropertyList::Array array(std::make_move_iterator(first),
                              std::make_move_iterator(values_.end()));
    values_.erase(first, values_.end());
    values_.emplace_back(std::move(array));
}

void Reader::endDictionary(const Open& open) {
    const std::size_t count = keys_.size() - open.firstKey;
    if (values_.size() - open.firstValue != count)
        return fail("A <key> without a value");
    std::vector<PropertyList::Dictionary::Entry> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        entries.push_back(
            {std::move(keys_[open.firstKey + i]), std::move(values_[open.firstValue + i])});
    keys_.resize(open.firstKey);
    values_.resize(open.firstValue);
    values_.emplace_back(PropertyList::Dictionary(std::move(entries)));
}

void Reader::endPlist(const Open& open) {
    if (values_.size() == open.firstValue)
        fail("No value in <plist>");
}

void Reader::entityDeclaration(const XML_Char* name, int, const XML_Char*, int, const XML_Char*,
                               const XML_Char*, const XML_Char*, const XML_Char*) {
    fail("Entity declarations are not supported: " + shown(name));
}

/// Rejected because Expat processes all declared attributes of an element at each occurrence.
void Reader::attributeDeclaration(const XML_Char* element, const XML_Char*, const XML_Char*,
                                  const XML_Char*, int) {
    fail("Attribute declarations are not supported: " + quoted(element));
}

void Reader::skippedEntity(const XML_Char* name, int) {
    fail("Unknown entity " + shown(name));
}

} // namespace

PropertyListResult readXml(const PropertyListService::ByteSource& source) {
    return Reader().run(source);
}

} // namespace platform::expat
