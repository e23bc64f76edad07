#pragma once

#include "startup/cpython.h"

/// Builds the internal modules `_wrpgen`, `_wrpgen._interop` and `_wrpgen._generic` and attaches the first to
/// `root`. Gives `_wrpgen`, borrowed from `root`, or null with a report of what failed; it stays attached in
/// either case.
PyObject* wrpPye_mlit_FFFFFFFF_common_wrappers(PyObject* root);

/// The module of the untyped wrappers: a new reference, or null with a report.
PyObject* wrpPye_mlit_FFFFFFFF_interop_wrappers();

/// The module of the typed wrappers: a new reference, or null with a report. Runs after the untyped ones are
/// ready.
PyObject* wrpPygn_mlit_FFFFFFFF_generic_wrappers();
