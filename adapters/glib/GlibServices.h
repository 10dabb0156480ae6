// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/runloop/RunLoopCenter.h"
#include "quarner/platform/DispatchService.h"
#include "quarner/platform/FileService.h"
#include "quarner/platform/LogSink.h"
#include "quarner/platform/TextService.h"

/// The services of the platform that GLib and GIO stand behind. None of them calls `setlocale` or
/// changes anything else that belongs to the host.
namespace quarner {

/// The dispatch service, with an end of its own.
class GlibDispatch : public DispatchService {
public:
    /// Ends all work: what waits for its turn on either queue is dropped, and so is what comes
    /// later, except that `syncMain` still runs work at once on the main thread. Whoever waits in
    /// `syncMain` returns. When this call returns, no background work is running any more (called
    /// from such work, it does not wait for it).
    virtual void shutDown() = 0;
};

/// Background work on a bounded number of threads, at least four; work beyond that waits for a
/// free one. The main queue is the default GMainContext: its loop must run for `syncMain` to
/// return on other threads. The calling thread counts as the main thread, as does the one that
/// owns that context at the time of a call. Destroying the service drops what waits on the main
/// queue; background work that was accepted still runs.
std::shared_ptr<GlibDispatch> makeGlibDispatch();

/// Run loops: a thread's centre belongs to the GMainContext that is the thread's default when it
/// first asks for its centre (`g_main_context_push_thread_default`; otherwise the default
/// context). Each turn of that context's loop delivers one notification, never inline with the
/// posting and never within the delivery of another, nested loops included. A thread that ends
/// lets go of its centre.
std::shared_ptr<RunLoops> makeGlibRunLoops();

/// Files on disk. The type code is the extended attribute `user.hfs.type`, four bytes; one of
/// another size is ignored. Attributes of a file that the caller may not read are not answered.
/// Icons follow from the kind of the file and its name alone. An alias is a desktop entry, a
/// regular file named *.desktop, of type Link, whose URL is a file:// URL or an absolute path.
std::shared_ptr<FileService> makeGlibFileService();

/// Collation and numbers in the locale that the environment (LC_ALL, LC_COLLATE, LC_NUMERIC,
/// LANG) names at the time of this call, whether or not the host has called `setlocale`; the C
/// locale where that one is not installed. Translations come from gettext's default domain: for
/// that the host itself calls `setlocale`, `textdomain`, `bindtextdomain` and
/// `bind_textdomain_codeset(domain, "UTF-8")`.
std::shared_ptr<TextService> makeGlibTextService();

/// GLib's structured log: log domain "Quarn", level info, so that by default a line is shown only
/// where G_MESSAGES_DEBUG asks for it. Bytes that are not valid UTF-8 become U+FFFD.
std::shared_ptr<LogSink> makeGlibLogSink();

} // namespace quarner
