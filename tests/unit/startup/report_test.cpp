#include "startup/report.h"

#include "python_fixture.h"

#include <functional>

namespace {

PyRef attribute(const PyRef& object, const char* name) {
    return PyRef::steal(PyObject_GetAttrString(object.get(), name));
}

PyRef take_exception() {
    return PyRef::steal(fn_take_pending_error());
}

TEST(Report, TextsWithNoErrorPending) {
    struct Row {
        std::function<void()> report;
        const char* error;
    };
    const PyRef name = eval("'Decimal'");
    const Row rows[] = {
        {[] { PyShlErr_ModuleInitializationInternalError(-1003); },
         "ImportError: Module initialization internal error (-1003)"},
        {[] { PyShlErr_ModuleInitializationInternalError(-1003, "a"); },
         "ImportError: Module initialization internal error (-1003) <a>"},
        {[] { PyShlErr_ModuleInitializationInternalError(-1002, "a", "b"); },
         "ImportError: Module initialization internal error (-1002) <a,b>"},
        {[] { PyShlErr_ModulePyInitError("velbor.voxlar", -1006); },
         "ImportError: One or more errors occurred while loading the module 'velbor.voxlar' (-1006)"},
        {[] { PyShlErr_DependencyImportError("velbor.pygc"); },
         "ImportError: Unable to import module dependencies. Cannot import the velbor.pygc module. The "
         "module not "
         "found or errors occurred while initializing it."},
        {[] { PyShlErr_UnableToImportModule("enum"); },
         "ImportError: Unable to import the specified module enum. The module not found or errors occurred "
         "while "
         "initializing it."},
        {[] { PyShlErr_CapsuleImportError("velbor.pygc._C_APIF"); },
         "ImportError: can't import capsule 'velbor.pygc._C_APIF'"},
        {[] { PyShlErr_TypeInitializationInternalError(-1015, "T"); },
         "ImportError: Type initialization internal error (-1015) <T>"},
        {[] { PyShlErr_TypeInitializationInternalError(-1014, "m", "T"); },
         "ImportError: Type initialization internal error (-1014) <m,T>"},
        {[&] { PyShlErr_UnableToImportType(name.get(), "decimal"); },
         "ImportError: Unable to import the specified type Decimal from the module decimal. The type not "
         "found or "
         "errors occurred while initializing it."},
        {[&] { PyShlErr_UnableToImportNestedType("Outer", name.get()); },
         "ImportError: Outer does not contain nested type Decimal"},
        {[] { PyShlErr_ChainOrFormat(PyExc_TypeError, "100%s"); }, "TypeError: 100%s"},
    };
    for (const Row& row : rows) {
        row.report();
        const PyRef error = take_exception();
        ASSERT_TRUE(error);
        EXPECT_EQ(std::string(Py_TYPE(error.get())->tp_name) + ": " + text_of(error.get()), row.error);
        EXPECT_EQ(attribute(error, "__cause__").get(), Py_None);
        EXPECT_EQ(attribute(error, "__context__").get(), Py_None);
    }
}

TEST(Report, PendingErrorBecomesCauseAndContextWithItsTraceback) {
    run("def fail():\n    raise TypeError('first')\n");
    const PyRef fail = eval("fail");
    EXPECT_FALSE(PyRef::steal(PyObject_CallNoArgs(fail.get())));

    PyShlErr_ModulePyInitError("velbor.voxlar", -1006);

    const PyRef error = take_exception();
    EXPECT_EQ(text_of(error.get()),
              "One or more errors occurred while loading the module 'velbor.voxlar' (-1006)");
    const PyRef cause = attribute(error, "__cause__");
    EXPECT_TRUE(Py_IS_TYPE(cause.get(), reinterpret_cast<PyTypeObject*>(PyExc_TypeError)));
    EXPECT_EQ(attribute(error, "__context__").get(), cause.get());
    EXPECT_NE(attribute(cause, "__traceback__").get(), Py_None);
    EXPECT_EQ(attribute(error, "__traceback__").get(), Py_None);
}

TEST(Report, NothingOfAChainIsLeftBehind) {
    const PyRef first = eval("ValueError('kept by the test')");
    const SameReferences same(first.get());
    PyErr_SetObject(PyExc_ValueError, first.get());
    PyShlErr_ChainFormat(PyExc_TypeError, "over %s", "it");
    EXPECT_EQ(take_error(), "TypeError: over it");
}

TEST(Report, ChainOfThree) {
    PyErr_SetString(PyExc_AttributeError, "raised by the import");
    PyShlErr_CapsuleImportError("velbor.pyreflection._C_APIT_Type");
    PyShlErr_ModulePyInitError("velbor.voxlar", -1009);
    const PyRef last = take_exception();
    const PyRef middle = attribute(last, "__cause__");
    const PyRef first = attribute(middle, "__cause__");
    EXPECT_EQ(text_of(last.get()),
              "One or more errors occurred while loading the module 'velbor.voxlar' (-1009)");
    EXPECT_EQ(text_of(middle.get()), "can't import capsule 'velbor.pyreflection._C_APIT_Type'");
    EXPECT_EQ(text_of(first.get()), "raised by the import");
}

TEST(Report, EnumReportIsATypeErrorUnderAnImportError) {
    PyShlErr_EnumTypeInitialization("no members", "velbor.voxlar.Axis");
    const PyRef error = take_exception();
    EXPECT_EQ(text_of(error.get()), "enum type 'velbor.voxlar.Axis' is not initialized");
    const PyRef cause = attribute(error, "__cause__");
    EXPECT_EQ(text_of(cause.get()), "no members");
    EXPECT_TRUE(Py_IS_TYPE(cause.get(), reinterpret_cast<PyTypeObject*>(PyExc_TypeError)));
}

TEST(Report, ChainOrFormatKeepsTheTextAsItStandsOverAnError) {
    PyErr_SetString(PyExc_ValueError, "under it");
    PyShlErr_ChainOrFormat(PyExc_TypeError, "100%s");
    const PyRef error = take_exception();
    EXPECT_EQ(text_of(error.get()), "100%s");
    EXPECT_EQ(text_of(attribute(error, "__cause__").get()), "under it");
}

}  // namespace
