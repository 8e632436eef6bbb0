#include "platform/linux/ContentType.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gio/gio.h>

#include "platform/linux/GlibHandles.h"

namespace qrx::platform {

namespace {

bool reads(GdkPixbufFormat* format, const std::string& type) {
    if (gdk_pixbuf_format_is_disabled(format) || gdk_pixbuf_format_is_scalable(format)) {
        return false;
    }
    gchar** const types = gdk_pixbuf_format_get_mime_types(format);
    bool found = false;
    for (gchar** each = types; each != nullptr && *each != nullptr && !found; ++each) {
        found = contentTypeIsA(type, *each);
    }
    g_strfreev(types);
    return found;
}

}  // namespace

std::string contentType(const std::string& path, std::string_view firstBytes) {
    const GlibHandle<gchar> type(
        g_content_type_guess(path.c_str(), reinterpret_cast<const guchar*>(firstBytes.data()),
                             firstBytes.size(), nullptr));
    const GlibHandle<gchar> mimeType(type ? g_content_type_get_mime_type(type.get()) : nullptr);
    return mimeType ? mimeType.get() : "application/octet-stream";
}

bool contentTypeIsA(const std::string& type, const std::string& base) {
    return g_content_type_is_a(type.c_str(), base.c_str()) != FALSE;
}

bool isStillPicture(const std::string& type) {
    if (!type.starts_with("image/")) return false;
    GSList* const formats = gdk_pixbuf_get_formats();
    bool found = false;
    for (const GSList* each = formats; each != nullptr && !found; each = each->next) {
        found = reads(static_cast<GdkPixbufFormat*>(each->data), type);
    }
    g_slist_free(formats);
    return found;
}

}  // namespace qrx::platform
