#pragma once

/// What this library offers a client beyond the record of TraceLibrary.h: the error lines as they are written, whatever
/// the level is. A client's own library need not have it, and no module asks for it.

/// Called with each error line, on the thread that writes it, before the writing returns. It must not write lines
/// itself.
/// @param module that wrote the line, "(no module)" for none
/// @param text the line in the encoding of whoever wrote it, valid during the call
using TraceErrorReceiver = void (*)(void *context, const char *module, const char *text);

/// Export "RecordingTrace_SetErrorReceiver": the receiver of error lines from now on, in place of the one before; null
/// for none. The one before is not called any more once this has returned.
using TraceSetErrorReceiver = void (*)(TraceErrorReceiver receiver, void *context);
