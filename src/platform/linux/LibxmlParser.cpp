#include "platform/linux/LibxmlParser.h"

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include "platform/linux/XmlBuilder.h"
#include "platform/linux/XmlEncodings.h"
#include "platform/linux/XmlOutline.h"

namespace qrx::platform {

namespace {

// HUGE: our own limits hold in place of the library's, which differ from release to release.
constexpr int kOptions = XML_PARSE_HUGE | XML_PARSE_RECOVER | XML_PARSE_NOENT | XML_PARSE_NONET |
                         XML_PARSE_NOCDATA | XML_PARSE_IGNORE_ENC | XML_PARSE_NOERROR |
                         XML_PARSE_NOWARNING;

/// What the callbacks of one parse share. It is their "user data": were that the context itself,
/// the library would look up entities behind their back, those outside the file included.
struct Parse {
    xmlParserCtxt* context = nullptr;
    XmlBuilder builder;
    std::exception_ptr fault;
    std::size_t rootEnd = 0;  ///< where the text goes on after the root's end tag

    [[nodiscard]] bool isOver() const { return fault || builder.isRefused(); }
};

Parse& parseOf(void* userData) {
    return *static_cast<Parse*>(userData);
}

/// Every callback runs its work through here: no fault may pass through the C library, and after
/// the end of the parse it only waits for the library to notice.
template <class Work>
void guarded(void* userData, Work&& work) noexcept {
    Parse& parse = parseOf(userData);
    if (!parse.isOver()) {
        try {
            work(parse.builder);
        } catch (...) {
            parse.fault = std::current_exception();
        }
    }
    if (parse.isOver()) xmlStopParser(parse.context);
}

std::string_view textOf(const xmlChar* text) {
    return text == nullptr ? std::string_view{} : reinterpret_cast<const char*>(text);
}

// The library's older callbacks: names come with their prefix, and namespace declarations stand
// among the attributes, where the file has them.
void startElement(void* userData, const xmlChar* name, const xmlChar** attributes) {
    guarded(userData, [&](XmlBuilder& builder) {
        XmlNode& element = builder.startElement(textOf(name));
        for (; attributes != nullptr && attributes[0] != nullptr; attributes += 2) {
            element.attributes.push_back(
                {std::string(textOf(attributes[0])), std::string(textOf(attributes[1]))});
        }
    });
}

void endElement(void* userData, const xmlChar* /*name*/) {
    guarded(userData, [&](XmlBuilder& builder) {
        builder.endElement();
        if (!builder.isInsideRoot()) {
            Parse& parse = parseOf(userData);
            parse.rootEnd = static_cast<std::size_t>(xmlByteConsumed(parse.context));
        }
    });
}

void characters(void* userData, const xmlChar* text, int length) {
    guarded(userData, [&](XmlBuilder& builder) {
        builder.text({reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
    });
}

void comment(void* userData, const xmlChar* text) {
    guarded(userData, [&](XmlBuilder& builder) { builder.comment(textOf(text)); });
}

void instruction(void* userData, const xmlChar* target, const xmlChar* data) {
    guarded(userData,
            [&](XmlBuilder& builder) { builder.instruction(textOf(target), textOf(data)); });
}

/// A reference to an entity that is declared elsewhere, perhaps.
void reference(void* userData, const xmlChar* name) {
    guarded(userData, [&](XmlBuilder& builder) {
        builder.leavesOut();
        builder.text("&" + std::string(textOf(name)) + ";");
    });
}

void startDocument(void* userData) {
    xmlSAX2StartDocument(parseOf(userData).context);
}

void documentType(void* userData, const xmlChar* name, const xmlChar* publicId,
                  const xmlChar* systemId) {
    xmlSAX2InternalSubset(parseOf(userData).context, name, publicId, systemId);
}

/// Entities that lie outside the file are not even declared.
void declareEntity(void* userData, const xmlChar* name, int type, const xmlChar* publicId,
                   const xmlChar* systemId, xmlChar* content) {
    if (type != XML_INTERNAL_GENERAL_ENTITY && type != XML_INTERNAL_PARAMETER_ENTITY) return;
    xmlSAX2EntityDecl(parseOf(userData).context, name, type, publicId, systemId, content);
}

/// The entity, unless it is too much.
xmlEntity* withinLimits(void* userData, xmlEntity* entity) {
    if (entity == nullptr || entity->etype == XML_INTERNAL_PREDEFINED_ENTITY) return entity;
    guarded(userData, [&](XmlBuilder& builder) {
        builder.substitutes(static_cast<std::size_t>(entity->length));
        if (exceedsAttributeLimit(textOf(entity->content))) builder.refuse();
    });
    return parseOf(userData).isOver() ? nullptr : entity;
}

xmlEntity* generalEntity(void* userData, const xmlChar* name) {
    xmlParserCtxt* const context = parseOf(userData).context;
    xmlEntity* const entity = xmlSAX2GetEntity(context, name);
    const bool isBeingDeclared = context->inSubset != 0;
    return isBeingDeclared ? entity : withinLimits(userData, entity);
}

xmlEntity* parameterEntity(void* userData, const xmlChar* name) {
    return withinLimits(userData, xmlSAX2GetParameterEntity(parseOf(userData).context, name));
}

xmlSAXHandler callbacks() {
    xmlSAXHandler all{};
    all.initialized = 1;  // the first version of the interface
    all.startDocument = startDocument;
    all.internalSubset = documentType;
    all.entityDecl = declareEntity;
    all.getEntity = generalEntity;
    all.getParameterEntity = parameterEntity;
    all.startElement = startElement;
    all.endElement = endElement;
    all.characters = characters;
    all.ignorableWhitespace = characters;
    all.comment = comment;
    all.processingInstruction = instruction;
    all.reference = reference;
    return all;
}

struct FreeContext {
    void operator()(xmlParserCtxt* context) const {
        xmlFreeDoc(context->myDoc);
        context->myDoc = nullptr;
        xmlFreeParserCtxt(context);
    }
};
using Context = std::unique_ptr<xmlParserCtxt, FreeContext>;

Context newContext(Parse& parse) {
    Context context(xmlNewParserCtxt());
    if (!context) throw std::bad_alloc();
    *context->sax = callbacks();
    context->userData = &parse;
    parse.context = context.get();
    return context;
}

void keepSurroundings(XmlDocument& document, std::string_view text, std::size_t rootEnd) {
    const auto rootStart = startOfRoot(text);
    if (!rootStart || rootEnd < *rootStart || rootEnd > text.size()) {
        document.wellFormed = false;
        return;
    }
    document.prolog = text.substr(0, *rootStart);
    document.epilog = text.substr(rootEnd);
}

}  // namespace

LibxmlParser::LibxmlParser() {
    xmlInitParser();
}

std::shared_ptr<XmlDocument> LibxmlParser::parse(std::string_view bytes) const {
    if (bytes.size() > kMostBytes) return nullptr;
    const DecodedXml decoded = decodedXml(bytes);
    const std::string& text = decoded.text;
    if (text.empty() || exceedsAttributeLimit(text)) return nullptr;

    Parse parse;
    const Context context = newContext(parse);
    // The document that the library makes holds declarations alone; it goes with the context.
    context->myDoc = xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                       nullptr, nullptr, kOptions);
    if (parse.fault) std::rethrow_exception(parse.fault);

    // The library itself ends a document whose entities hold themselves.
    if (context->errNo == XML_ERR_ENTITY_LOOP) return nullptr;

    auto document = parse.builder.finished();
    if (!document) return nullptr;
    document->encoding = decoded.encoding;
    document->wellFormed =
        context->wellFormed != 0 && decoded.exact && parse.builder.isComplete() &&
        text.find('\0') == std::string::npos;  // there the library takes the text to end
    if (document->wellFormed) keepSurroundings(*document, text, parse.rootEnd);
    return document;
}

std::optional<std::string> LibxmlParser::encoded(std::string_view markup,
                                                 const XmlEncoding& encoding) const {
    return encodedXml(markup, encoding);
}

}  // namespace qrx::platform
