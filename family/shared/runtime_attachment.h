#pragma once

/// Attaches this module to the runtime that another module of the process has started, at its first need of
/// managed code; later calls are one test. False, with a Python error set, when there is no runtime to attach
/// to. A failure is not remembered: once the runtime is up, the next call attaches.
///
/// A sibling module never starts the runtime: whoever starts it also shuts it down and hands over the
/// callbacks, and that is the bridge.
bool fn_attach_to_runtime();
