// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/WakeSource.h"

#include <utility>

namespace quarner {
namespace {

using Turn = WakeSource::Turn;

gboolean dispatch(GSource* source, GSourceFunc callback, gpointer data) {
    g_source_set_ready_time(source, -1); // before the turn: a wake during it counts
    if (callback(data))
        g_source_set_ready_time(source, 0);
    return G_SOURCE_CONTINUE;
}

gboolean callTurn(gpointer turn) noexcept { return (*static_cast<const Turn*>(turn))(); }

void deleteTurn(gpointer turn) { delete static_cast<Turn*>(turn); }

GSource* newSource() {
    static GSourceFuncs functions = {nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};
    return g_source_new(&functions, sizeof(GSource));
}

} // namespace

WakeSource::WakeSource(GMainContext* context, Nesting nesting, Turn turn)
    : _context(g_main_context_ref(context)), _source(newSource()) {
    g_source_set_callback(_source, callTurn, new Turn(std::move(turn)), deleteTurn);
    g_source_set_can_recurse(_source, nesting == Nesting::Yes);
    g_source_attach(_source, _context);
}

WakeSource::~WakeSource() {
    g_source_destroy(_source);
    g_source_unref(_source);
    g_main_context_unref(_context);
}

void WakeSource::wake() { g_source_set_ready_time(_source, 0); }

} // namespace quarner
