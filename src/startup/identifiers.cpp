#include "startup/identifiers.h"

#define VELBOR_DEFINE_IDENTIFIER(name, text) PyObject* name = nullptr;
VELBOR_IDENTIFIERS(VELBOR_DEFINE_IDENTIFIER)
#undef VELBOR_DEFINE_IDENTIFIER

void fn_intern_identifiers() {
#define VELBOR_INTERN_IDENTIFIER(name, text) name = PyUnicode_InternFromString(text);
    VELBOR_IDENTIFIERS(VELBOR_INTERN_IDENTIFIER)
#undef VELBOR_INTERN_IDENTIFIER
}
