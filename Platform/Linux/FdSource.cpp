#include "Platform/Linux/FdSource.h"

#include <glib.h>

namespace ravik::platform {

namespace {

struct Source {
    GSource base;
    gpointer tag;
    std::function<bool()>* pending;
    std::function<bool()>* ready;
};

gboolean prepare(GSource* source, gint* timeout) {
    *timeout = -1;
    return (*reinterpret_cast<Source*>(source)->pending)();
}

gboolean check(GSource* source) {
    auto* own = reinterpret_cast<Source*>(source);
    return g_source_query_unix_fd(source, own->tag) != 0 || (*own->pending)();
}

gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
    return (*reinterpret_cast<Source*>(source)->ready)() ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void finalize(GSource* source) {
    auto* own = reinterpret_cast<Source*>(source);
    delete own->pending;
    delete own->ready;
}

GSourceFuncs functions{prepare, check, dispatch, finalize, nullptr, nullptr};

}  // namespace

FdSource::FdSource(int fd, std::function<bool()> pending, std::function<bool()> ready)
    : m_source(g_source_new(&functions, sizeof(Source))) {
    auto* own = reinterpret_cast<Source*>(m_source);
    own->pending = new std::function<bool()>(std::move(pending));
    own->ready = new std::function<bool()>(std::move(ready));
    own->tag = g_source_add_unix_fd(m_source, fd, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR));
    g_source_attach(m_source, nullptr);
}

FdSource::~FdSource() {
    g_source_destroy(m_source);
    g_source_unref(m_source);
}

}  // namespace ravik::platform
