// The IRmark: HMRC's digest of a message's Body. Canonical XML and SHA-1 come
// from libxml2 and OpenSSL. The library's own tree stays the system's one
// tree: the message comes here as the text it was saved as, which is what
// the gateway receives and digests in turn.
#include <libxml/c14n.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <openssl/evp.h>

#include <cstring>
#include <memory>

#include "common/library.h"
#include "envelope/submission.h"

namespace {

struct DocFree {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
struct BufferClose {
    void operator()(xmlOutputBuffer* buffer) const { xmlOutputBufferClose(buffer); }
};

bool named(const xmlNode* node, const char* name, const char* ns) {
    return node && node->type == XML_ELEMENT_NODE && node->ns && std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0 &&
           std::strcmp(reinterpret_cast<const char*>(node->ns->href), ns) == 0;
}

xmlNode* childNamed(xmlNode* parent, const char* name, const char* ns) {
    for (xmlNode* child = parent ? parent->children : nullptr; child; child = child->next)
        if (named(child, name, ns)) return child;
    return nullptr;
}

// The document subset to canonicalise: Body and everything below it. An
// attribute or a namespace comes with the element it stands on (libxml2
// hands a namespace in as the node, with its element as the parent), so the
// envelope's namespace, declared on the root, is written on Body as in scope.
int insideBody(void* body, xmlNode* node, xmlNode* parent) {
    if (!node) return 0;
    const bool onElement = node->type == XML_NAMESPACE_DECL || node->type == XML_ATTRIBUTE_NODE;
    for (const xmlNode* n = onElement ? parent : node; n; n = n->parent)
        if (n == body) return 1;
    return 0;
}

CString fail(CString* problem, const char* why) {
    if (problem) *problem = why;
    return CString();
}

}  // namespace

CString ComputeIRmark(const CString& messageText, CString* problem) {
    if (problem) problem->Empty();
    if (messageText.GetLength() <= 0) return fail(problem, "the message is empty");
    // Our own text, but an attachment can be large: no limit on a text node.
    // Errors are not printed; their text could quote the message.
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
    const std::unique_ptr<xmlDoc, DocFree> doc(
        xmlReadMemory(messageText.c_str(), messageText.GetLength(), "message.xml", nullptr, kOptions));
    if (!doc) return fail(problem, "the message is not well-formed XML");

    xmlNode* root = xmlDocGetRootElement(doc.get());
    if (!named(root, "GovTalkMessage", kEnvelopeNamespace))
        return fail(problem, "the message has no GovTalkMessage in the envelope's namespace");
    xmlNode* body = childNamed(root, "Body", kEnvelopeNamespace);
    if (!body) return fail(problem, "the message has no Body");
    xmlNode* header = childNamed(childNamed(body, "IRenvelope", kCorporationTaxNamespace), "IRheader",
                                 kCorporationTaxNamespace);
    if (xmlNode* mark = childNamed(header, "IRmark", kCorporationTaxNamespace)) {
        xmlUnlinkNode(mark);
        xmlFreeNode(mark);
    }

    const std::unique_ptr<xmlOutputBuffer, BufferClose> out(xmlAllocOutputBuffer(nullptr));
    if (!out) return fail(problem, "out of memory");
    if (xmlC14NExecute(doc.get(), insideBody, body, XML_C14N_1_0, nullptr, 0, out.get()) < 0)
        return fail(problem, "the message's Body cannot be put in canonical form");
    xmlOutputBufferFlush(out.get());
    const xmlChar* canonical = xmlOutputBufferGetContent(out.get());
    const std::size_t length = xmlOutputBufferGetSize(out.get());

    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int digestLength = 0;
    if (!canonical || EVP_Digest(canonical, length, digest, &digestLength, EVP_sha1(), nullptr) != 1)
        return fail(problem, "the digest of the message's Body cannot be made");
    return ToBase64(digest, static_cast<int>(digestLength));
}
