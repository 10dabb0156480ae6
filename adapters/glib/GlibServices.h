// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <memory>

#include "adapters/runloop/MainThreadQueue.h"
#include "adapters/runloop/RunLoops.h"
#include "quarner/platform/DispatchService.h"
#include "quarner/platform/FileService.h"
#include "quarner/platform/LogSink.h"
#include "quarner/platform/TextService.h"

/// The platform services that use GLib and GIO. None of them calls `setlocale` or changes anything
/// else in the host's process, but for the binding of gettext's domain `quarner`.
namespace quarner {

/// The dispatch service, which can be shut down.
class GlibDispatch : public DispatchService {
public:
    /// Drops queued and later work on both queues, except that `syncMain` still runs work at once
    /// on the main thread. Callers that wait in `syncMain` return. When this call returns, no
    /// background work is running (called from background work, it does not wait for that).
    virtual void shutDown() = 0;
};

/// Runs background work on a bounded number of threads, at least four; further work waits for a
/// free thread. Destroying the service drops the work queued for the main thread; accepted
/// background work still runs.
///
/// The calling thread is taken as the main thread. Work for it goes through `postToMain`. If that
/// is empty, it goes through the default GMainContext, whose loop must run for `syncMain` to return
/// on other threads, and the thread that owns that context during a call is taken as the main
/// thread, too. The log says so once if a caller has waited `warnAfter` for the main thread.
std::shared_ptr<GlibDispatch>
makeGlibDispatch(PostToLoop postToMain = {},
                 std::chrono::milliseconds warnAfter = MainThreadQueue::usualWarnAfter);

/// Run loops. A thread's centre belongs to the GMainContext that is the thread's default when it
/// first asks for its centre (`g_main_context_push_thread_default`; otherwise the default context).
/// Each turn of that context's loop delivers one notification, never within the posting and never
/// within another delivery, nested loops included. A thread that ends releases its centre.
///
/// With a `postToMain`, the calling thread and threads without a context of their own share one
/// centre, which delivers through that function.
std::shared_ptr<RunLoops> makeGlibRunLoops(PostToLoop postToMain = {});

/// Files on disk. The type code is the extended attribute `user.hfs.type` with four bytes; any
/// other size is ignored. `attributes` returns `std::nullopt` for a file that the caller may not
/// read. Icons depend only on the kind of the file and its name. An alias is a desktop entry of
/// type Link: a regular file named *.desktop whose URL is a file:// URL or an absolute path.
std::shared_ptr<FileService> makeGlibFileService();

/// Collation and numbers in the locale that the environment (LC_ALL, LC_COLLATE, LC_NUMERIC, LANG)
/// names at the time of this call, whether or not the host has called `setlocale`; the C locale if
/// that locale is not installed. Translations come from gettext's default domain: for them the host
/// itself calls `setlocale`, `textdomain`, `bindtextdomain` and `bind_textdomain_codeset(domain,
/// "UTF-8")`. The library's own messages come from the domain `quarner`, which this call binds
/// (`bindTranslations`).
std::shared_ptr<TextService> makeGlibTextService();

/// GLib's structured log with log domain "Quarn" and level info: by default a line is shown only if
/// G_MESSAGES_DEBUG asks for it. Bytes that are not valid UTF-8 become U+FFFD. With a `log`, lines
/// go there instead, made safe to show.
std::shared_ptr<LogSink> makeGlibLogSink(std::function<void(const std::string&)> log = {});

} // namespace quarner
