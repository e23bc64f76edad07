#include "collections/fixture.h"

#include "collections/common_wrappers.h"
#include "collections/interop_converters.h"
#include "exchange/exchange_host.h"
#include "exchange/object_host.h"
#include "generics_elements.h"
#include "wrappers/capsules.h"
#include "wrappers/clr_object.h"
#include "wrappers/markers.h"

namespace {

PyObject* new_wrapper(PyTypeObject* type, void* handle) {
    return fn_py_clr_type_generic_new(handle, type);
}

PyObject* make(PyObject*, PyObject* arguments) {
    PyObject *type = nullptr, *items = nullptr;
    if (!PyArg_ParseTuple(arguments, "O!O", &PyType_Type, &type, &items)) {
        return nullptr;
    }
    auto* wrapper_type = reinterpret_cast<PyTypeObject*>(type);
    const std::string name = wrapper_type->tp_name;
    const bool typed = name.find("._generic.") != std::string::npos;
    void* handle = fake::new_collection(typed ? name.substr(name.size() - 8) : "", items);
    return handle == nullptr ? nullptr : new_wrapper(wrapper_type, handle);
}

template <PyTypeObject& Type>
PyObject* make_object(PyObject*, PyObject* number) {
    return new_wrapper(
        &Type, fake::new_handle(std::make_shared<fake::Object>(static_cast<int>(PyLong_AsLong(number)))));
}

PyObject* texts(std::vector<std::string>& from) {
    PyRef list = PyRef::steal(PyList_New(0));
    for (const std::string& text : from) {
        const PyRef item = PyRef::steal(PyUnicode_FromString(text.c_str()));
        PyList_Append(list.get(), item.get());
    }
    from.clear();
    return list.release();
}

PyObject* calls(PyObject*, PyObject*) {
    return texts(fake::state().calls);
}
PyObject* bound(PyObject*, PyObject*) {
    return texts(fake::state().bound);
}
PyObject* living(PyObject*, PyObject*) {
    return PyLong_FromLong(fake::living_handles());
}

PyObject* fail(PyObject*, PyObject* arguments) {
    const char* name = nullptr;
    int after = 0;
    if (!PyArg_ParseTuple(arguments, "s|i", &name, &after)) {
        return nullptr;
    }
    fake::state().failing = name;
    fake::state().fails_after = after;
    Py_RETURN_NONE;
}

PyObject* setting(PyObject*, PyObject* arguments) {
    const char* name = nullptr;
    int value = 0;
    if (!PyArg_ParseTuple(arguments, "si", &name, &value)) {
        return nullptr;
    }
    fake::State& now = fake::state();
    const std::map<std::string, int*> fields = {{"assignable", &now.assignable},
                                                {"handles_bulk", &now.handles_bulk},
                                                {"cast_status", &now.cast_status},
                                                {"length_error", &now.length_error}};
    *fields.at(name) = value;
    Py_RETURN_NONE;
}

PyObject* convert(PyObject*, PyObject* arguments) {
    using Converter = int (*)(PyObject*, VariantArg*);
    static const std::map<std::string, Converter> converters = {
        {"iter", wrpPye_conv_py_to_clr_iter},
        {"iterable", wrpPye_conv_py_to_clr_iterable},
        {"idisposable", wrpPye_conv_py_to_clr_idisposable},
        {"icollection", wrpPye_conv_py_to_clr_icollection},
        {"ilist", wrpPye_conv_py_to_clr_ilist},
        {"array", wrpPye_conv_py_to_clr_array},
        {"arrlist", wrpPye_conv_py_to_clr_arrlist},
        {"colbase", wrpPye_conv_py_to_clr_colbase},
        {"rocolbase", wrpPye_conv_py_to_clr_rocolbase},
        {"array_1BA766B5", wrpPygn_conv_py_to_clr_array_1BA766B5},
        {"array_A4A29720", wrpPygn_conv_py_to_clr_array_A4A29720},
        {"array_3AC634AC", wrpPygn_conv_py_to_clr_array_3AC634AC},
        {"array_110A8374", wrpPygn_conv_py_to_clr_array_110A8374},
        {"ilist_F44BC945", wrpPygn_conv_py_to_clr_ilist_F44BC945},
        {"ilist_29B75A02", wrpPygn_conv_py_to_clr_ilist_29B75A02},
        {"list_CBE911FC", wrpPygn_conv_py_to_clr_list_CBE911FC},
        {"iterable_9F9569E6", wrpPygn_conv_py_to_clr_iterable_9F9569E6},
        {"iterable_361B67C0", wrpPygn_conv_py_to_clr_iterable_361B67C0},
    };
    const char* name = nullptr;
    PyObject* object = nullptr;
    if (!PyArg_ParseTuple(arguments, "sO", &name, &object)) {
        return nullptr;
    }
    // A tag that no converter writes, so that one which stays unwritten shows.
    VariantArg record{77, 0, &record};
    if (converters.at(name)(object, &record) == 0) {
        return nullptr;
    }
    const char* payload = record.payload == nullptr ? "null" : record.payload == object ? "object" : "handle";
    return Py_BuildValue("is", record.kind, payload);
}

PyMethodDef helpers[] = {
    {"make", make, METH_VARARGS, nullptr},
    {"node", make_object<wrpPy_tyds_F44BC945_Node>, METH_O, nullptr},
    {"vector", make_object<wrpPy_tyds_29B75A02_Vector4>, METH_O, nullptr},
    {"unit", make_object<wrpPy_tyds_18BDDF85_ITextureUnit>, METH_O, nullptr},
    {"calls", calls, METH_NOARGS, nullptr},
    {"bound", bound, METH_NOARGS, nullptr},
    {"living", living, METH_NOARGS, nullptr},
    {"fail", fail, METH_VARARGS, nullptr},
    {"setting", setting, METH_VARARGS, nullptr},
    {"convert", convert, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyObject* new_cast_result(int status, PyObject* value) {
    return Py_BuildValue("iO", status, value == nullptr ? Py_None : value);
}

PyObject* wrap_type(void* handle) {
    return new_wrapper(&wrpPy_tyds_F44BC945_Node, handle);
}

int take_object(PyObject* value, void** out) {
    if (Py_TYPE(value) != &wrpPy_tyds_F44BC945_Node) {
        return 0;
    }
    *out = fn_wrapper_handle(value);
    return 1;
}

void ready_element(PyTypeObject* type, bool is_struct) {
    ASSERT_EQ(PyType_Ready(type), 0);
    ASSERT_TRUE(is_struct ? fn_set_stc_type_host_markattr(type) : fn_set_obj_type_host_markattr(type));
}

constexpr char kPythonHelpers[] = R"py(
def raises(kind, text, function, *arguments):
    try:
        result = function(*arguments)
    except kind as error:
        assert type(error) is kind, repr(error)
        if text is not None:
            assert str(error) == text, (str(error), text)
        return error
    raise AssertionError(f'no {kind.__name__}, but {result!r}')

def set_item(x, key, value): x[key] = value
def del_item(x, key): del x[key]
def get_item(x, key): return x[key]
def add(x, y): return x + y
def inplace_add(x, y):
    x += y
    return x
def inplace_mul(x, y):
    x *= y
    return x
)py";

/// Once a process: the types are static.
void build_once() {
    static bool built = false;
    if (built) {
        return;
    }
    built = true;
    ASSERT_TRUE(ExchangeHost::get_instance().initialize("WrpInterop.Velbor.Voxlar"));
    ASSERT_FALSE(ObjectHost::get_instance().is_not_valid()) << ObjectHost::get_instance().error_msg();
    PyShCastOpResult_New = new_cast_result;
    wrpPyl_convcaps_clr_to_py_C08ECFAB_Type = wrap_type;
    wrpPyl_trancaps_py_to_clr_359C4ED8_Object = take_object;
    ready_element(&wrpPy_tyds_F44BC945_Node, false);
    ready_element(&wrpPy_tyds_29B75A02_Vector4, true);
    ready_element(&wrpPy_tyds_361B67C0_Vector3, true);
    ready_element(&wrpPy_tyds_18BDDF85_ITextureUnit, false);

    PyObject* main = PyImport_AddModule("__main__");
    ASSERT_EQ(PyModule_AddFunctions(main, helpers), 0);
    const PyRef root = PyRef::steal(PyModule_New("velbor.voxlar"));
    ASSERT_NE(wrpPye_mlit_FFFFFFFF_common_wrappers(root.get()), nullptr) << take_error();
    set_name("root", root.get());
    run("interop = root._wrpgen._interop\ngeneric = root._wrpgen._generic");
    run(kPythonHelpers);
    run("kept = {*globals(), 'kept', 'name'}");
}

}  // namespace

void Collections::SetUp() {
    build_once();
    fake::state().calls.clear();
    m_living = fake::living_handles();
}

void Collections::TearDown() {
    fake::state().missing.clear();
    fake::state().failing.clear();
    fake::state().recording = true;
    fake::state().assignable = fake::state().handles_bulk = fake::state().cast_status = 1;
    fake::state().length_error = 0;
    run("for name in set(globals()) - kept: del globals()[name]\nglobals().pop('name', None)\nimport "
        "gc\ngc.collect()");
    EXPECT_EQ(take_error(), "");
    EXPECT_EQ(fake::living_handles(), m_living) << "handles that nobody freed";
}
