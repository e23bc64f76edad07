#include "startup/version.h"

#include "python_fixture.h"
#include "startup/import.h"

namespace {

constexpr int Reference[] = {23, 7, 0, 0};

class Version : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(PyType_Ready(wrpPye_tyds_FFFFFFFF_ModuleVersion), 0); }

    static PyRef make(int major, int minor, int patch, int sub, const char* view) {
        return PyRef::steal(PyShVersionAttr_Create(major, minor, patch, sub, view));
    }

    /// Stands a sibling into sys.modules; a null version or threshold leaves the attribute out.
    static void add_sibling(const PyRef& version, const PyRef& threshold) {
        run("import sys, types\nsibling = sys.modules['velbor_sibling'] = "
            "types.ModuleType('velbor_sibling')\n");
        const PyRef sibling = eval("sibling");
        if (version) {
            PyObject_SetAttrString(sibling.get(), "VERSION", version.get());
        }
        if (threshold) {
            PyObject_SetAttrString(sibling.get(), "_BACKWARD_COMPATIBILITY_THRESHOLD", threshold.get());
        }
    }

    static PyRef import_sibling() {
        return PyRef::steal(PyShImport_ImportRefModule("velbor.voxlar", "velbor_sibling", Reference));
    }
};

TEST_F(Version, PresentsItself) {
    const PyRef version = make(23, 8, 0, 1, "23.8.0.1");
    set_name("version", version.get());
    EXPECT_EQ(repr_of(version.get()), "<velbor.voxlar._ModuleVersionType: 23.8.0.1>");
    EXPECT_EQ(text_of(version.get()), "23.8.0.1");
    EXPECT_EQ(text_of(eval("(version.major, version.minor, version.patch, version.sub, version.view)").get()),
              "(23, 8, 0, 1, '23.8.0.1')");
    run("try:\n    version.sub = 2\n    assert False\nexcept AttributeError:\n    pass\n"
        "try:\n    type(version)()\n    assert False\nexcept TypeError:\n    pass\n"
        "try:\n    type('Sub', (type(version),), {})\n    assert False\nexcept TypeError:\n    pass\n");
}

TEST_F(Version, ViewIsHandedOutWithAReferenceOfItsOwn) {
    const PyRef version = make(1, 2, 3, 4, "a view");
    PyObject* view = PyShVersionAttr_GetView(version.get());
    const SameReferences same(view);
    set_name("version", version.get());
    EXPECT_EQ(eval("version.view").get(), view);
    EXPECT_EQ(eval("str(version)").get(), view);
    run("del version");
}

TEST_F(Version, HashIsFnvOverTheLittleEndianFields) {
    // Computed by hand over the sixteen bytes; sign-extended from 32 bits.
    std::uint32_t expected = 0x811c9dc5;
    for (const int byte : {23, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) {
        expected = (expected ^ static_cast<std::uint32_t>(byte)) * 16777619U;
    }
    const PyRef version = make(23, 8, 0, 0, "23.8.0.0");
    EXPECT_EQ(PyObject_Hash(version.get()), static_cast<std::int32_t>(expected));
    EXPECT_EQ(PyObject_Hash(make(23, 8, 0, 0, "other view").get()), PyObject_Hash(version.get()));
}

TEST_F(Version, Compares) {
    const PyRef low = make(22, 6, 0, 0, "22.6.0.0");
    const PyRef high = make(23, 8, 0, 0, "23.8.0.0");
    set_name("low", low.get());
    set_name("high", high.get());
    run("assert low < high and low <= high and low != high and high > low and high >= low\n"
        "assert not (low == high) and low == low and low <= low and low >= low and not (low < low)\n"
        "assert low.__lt__(1) is NotImplemented and low.__eq__('22.6.0.0') is NotImplemented\n");
    for (const auto& [parts, expected] : {std::pair{std::array{22, 6, 0, 0}, 0},
                                          {std::array{22, 6, 0, 1}, 1},
                                          {std::array{22, 5, 9, 9}, -1},
                                          {std::array{23, 0, 0, 0}, 1},
                                          {std::array{-1, 6, 0, 0}, -1}}) {
        EXPECT_EQ(PyShVersionAttr_Compare(parts.data(), low.get()), expected);
    }
}

TEST_F(Version, SiblingWithinItsRangePasses) {
    add_sibling(make(23, 7, 0, 0, "23.7.0.0"), make(22, 6, 0, 0, "22.6.0.0"));
    const PyRef sibling = eval("sibling");
    const SameReferences same(sibling.get());
    EXPECT_EQ(import_sibling().get(), sibling.get());
    EXPECT_EQ(take_error(), "");
}

TEST_F(Version, SiblingRefusals) {
    struct Row {
        PyRef version, threshold;
        const char* error;
    };
    Row rows[] = {
        {{},
         make(22, 6, 0, 0, "22.6.0.0"),
         "ImportError: Unable to import module dependencies. Cannot import the velbor_sibling module. The "
         "velbor_sibling module found does not have 'VERSION' attribute to check version compatibility."},
        {make(23, 6, 9, 0, "23.6.9.0"), make(22, 6, 0, 0, "22.6.0.0"),
         "ImportError: Unable to import module dependencies. Cannot import the velbor_sibling module. The "
         "velbor_sibling module found has a version ('23.6.9.0') that is lower than the referenced version "
         "of that "
         "module ('23.7.0.0')."},
        {make(23, 7, 0, 0, "23.7.0.0"),
         {},
         "ImportError: Unable to import module dependencies. Cannot import the velbor_sibling module. The "
         "velbor_sibling module found does not have 'BACKWARD_COMPATIBILITY_THRESHOLD' attribute to check "
         "version "
         "compatibility."},
        {make(24, 1, 0, 0, "24.1.0.0"), make(23, 8, 0, 0, "23.8.0.0"),
         "ImportError: Unable to import module dependencies. Cannot import the velbor_sibling module. The "
         "installed "
         "version of the module ('24.1.0.0') is not compatible with the referenced vesion of the module "
         "('23.7.0.0'). The installed version of the module is not compatible with the module versions < "
         "'23.8.0.0'. Update dendend module 'velbor.voxlar' to a latest version."},
    };
    for (Row& row : rows) {
        add_sibling(row.version, row.threshold);
        const PyRef sibling = eval("sibling");
        const SameReferences same(sibling.get());
        EXPECT_FALSE(import_sibling());
        EXPECT_EQ(take_error(), row.error);
    }
}

TEST_F(Version, AbsentSiblingIsReportedOverTheImportError) {
    EXPECT_FALSE(PyRef::steal(PyShImport_ImportRefModule("velbor.voxlar", "velbor_nowhere", Reference)));
    const PyRef error = PyRef::steal(fn_take_pending_error());
    EXPECT_EQ(text_of(error.get()),
              "Unable to import module dependencies. Cannot import the velbor_nowhere module. The module not "
              "found or "
              "errors occurred while initializing it.");
    const PyRef cause = PyRef::steal(PyObject_GetAttrString(error.get(), "__cause__"));
    EXPECT_EQ(text_of(cause.get()), "No module named 'velbor_nowhere'");
}

TEST_F(Version, ImportsOfTypes) {
    const PyRef decimal = eval("__import__('decimal').Decimal");
    const PyRef pi = eval("'pi'");
    const PyRef nothing = eval("'Nothing'");
    EXPECT_EQ(PyRef::steal(PyShImport_ImportType("decimal", PyWrpIdTypeName_Decimal)).get(), decimal.get());
    EXPECT_EQ(PyRef::steal(PyShImport_ImportTypeEx("decimal", PyWrpIdTypeName_Decimal)).get(), decimal.get());
    EXPECT_TRUE(PyRef::steal(PyShImport_ImportType("math", pi.get())));

    EXPECT_FALSE(PyRef::steal(PyShImport_ImportTypeEx("math", pi.get())));
    EXPECT_EQ(take_error(), "TypeError: Attribute must be type object, not 'float'");
    EXPECT_FALSE(PyRef::steal(PyShImport_ImportType("velbor_nowhere", nothing.get())));
    EXPECT_EQ(
        take_error(),
        "ImportError: Unable to import the specified module velbor_nowhere. The module not found or errors "
        "occurred while initializing it.");
    EXPECT_FALSE(PyRef::steal(PyShImport_ImportType("math", nothing.get())));
    EXPECT_EQ(take_error(),
              "ImportError: Unable to import the specified type Nothing from the module math. The type not "
              "found or "
              "errors occurred while initializing it.");
}

TEST_F(Version, ImportsOfNestedTypes) {
    run("import sys, types\n"
        "nest = sys.modules['velbor_nest'] = types.ModuleType('velbor_nest')\n"
        "class Outer:\n    class Inner:\n        value = 1\n"
        "nest.Outer = Outer\n");
    const PyRef outer = eval("'Outer'"), inner = eval("'Inner'"), value = eval("'value'"),
                none = eval("'None_'");
    const PyRef expected = eval("Outer.Inner");
    EXPECT_EQ(PyRef::steal(PyShImport_ImportTypeExV("velbor_nest", 2, outer.get(), inner.get())).get(),
              expected.get());
    EXPECT_FALSE(PyRef::steal(PyShImport_ImportTypeExV("velbor_nest", 2, outer.get(), none.get())));
    EXPECT_EQ(take_error(), "ImportError: Outer does not contain nested type None_");
    EXPECT_FALSE(
        PyRef::steal(PyShImport_ImportTypeExV("velbor_nest", 3, outer.get(), inner.get(), value.get())));
    EXPECT_EQ(take_error(), "TypeError: Attribute must be type object, not 'int'");
}

}  // namespace
