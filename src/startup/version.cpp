#include "startup/version.h"

#include <algorithm>
#include <array>
#include <compare>

namespace {

using Parts = std::array<std::int32_t, 4>;

PyShVersionObject* as_version(PyObject* object) {
    return reinterpret_cast<PyShVersionObject*>(object);
}

Parts parts_of(PyObject* object) {
    const PyShVersionObject* version = as_version(object);
    return {version->major, version->minor, version->patch, version->sub};
}

void wrpPye_tpsb_version_tp_dealloc(PyObject* self) {
    Py_XDECREF(as_version(self)->view);
    Py_TYPE(self)->tp_free(self);
}

PyObject* wrpPye_tpsb_version_tp_repr(PyObject* self) {
    return PyUnicode_FromFormat("<%s: %U>", Py_TYPE(self)->tp_name, as_version(self)->view);
}

PyObject* wrpPye_tpsb_version_tp_str(PyObject* self) {
    return fn_new_ref(as_version(self)->view);
}

/// 32-bit FNV-1a over the sixteen bytes of the fields, least significant byte first.
Py_hash_t wrpPye_tpsb_version_tp_hash(PyObject* self) {
    std::uint32_t hash = 2166136261U;
    for (const std::int32_t part : parts_of(self)) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            hash ^= (static_cast<std::uint32_t>(part) >> shift) & 0xFFU;
            hash *= 16777619U;
        }
    }
    return static_cast<std::int32_t>(hash);
}

PyObject* wrpPye_tpsb_version_tp_richcompare(PyObject* left, PyObject* right, int operation) {
    if (!Py_IS_TYPE(left, wrpPye_tyds_FFFFFFFF_ModuleVersion) ||
        !Py_IS_TYPE(right, wrpPye_tyds_FFFFFFFF_ModuleVersion)) {
        Py_RETURN_NOTIMPLEMENTED;
    }
    const std::strong_ordering order = parts_of(left) <=> parts_of(right);
    switch (operation) {
        case Py_LT:
            return PyBool_FromLong(std::is_lt(order));
        case Py_LE:
            return PyBool_FromLong(std::is_lteq(order));
        case Py_EQ:
            return PyBool_FromLong(std::is_eq(order));
        case Py_NE:
            return PyBool_FromLong(std::is_neq(order));
        case Py_GT:
            return PyBool_FromLong(std::is_gt(order));
        case Py_GE:
            return PyBool_FromLong(std::is_gteq(order));
        default:
            Py_RETURN_NOTIMPLEMENTED;
    }
}

template <std::int32_t PyShVersionObject::*Part>
PyObject* get_part(PyObject* self, void*) {
    return PyLong_FromLong(as_version(self)->*Part);
}

PyObject* get_view(PyObject* self, void*) {
    return wrpPye_tpsb_version_tp_str(self);
}

PyGetSetDef wrpPye_typd_Version[] = {
    {"major", get_part<&PyShVersionObject::major>, nullptr, nullptr, nullptr},
    {"minor", get_part<&PyShVersionObject::minor>, nullptr, nullptr, nullptr},
    {"patch", get_part<&PyShVersionObject::patch>, nullptr, nullptr, nullptr},
    {"sub", get_part<&PyShVersionObject::sub>, nullptr, nullptr, nullptr},
    {"view", get_view, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

PyTypeObject make_version_type() {
    PyTypeObject type{};
    type.ob_base = {PyObject_HEAD_INIT(nullptr) 0};
    type.tp_name = "velbor.voxlar._ModuleVersionType";
    type.tp_basicsize = sizeof(PyShVersionObject);
    type.tp_dealloc = wrpPye_tpsb_version_tp_dealloc;
    type.tp_repr = wrpPye_tpsb_version_tp_repr;
    type.tp_str = wrpPye_tpsb_version_tp_str;
    type.tp_hash = wrpPye_tpsb_version_tp_hash;
    type.tp_richcompare = wrpPye_tpsb_version_tp_richcompare;
    type.tp_getset = wrpPye_typd_Version;
    return type;
}

PyTypeObject version_type = make_version_type();

}  // namespace

PyTypeObject* const wrpPye_tyds_FFFFFFFF_ModuleVersion = &version_type;

PyObject* PyShVersionAttr_Create(int major, int minor, int patch, int sub, const char* view) {
    PyObject* object = PyType_GenericNew(wrpPye_tyds_FFFFFFFF_ModuleVersion, nullptr, nullptr);
    PyShVersionObject* version = as_version(object);
    version->major = major;
    version->minor = minor;
    version->patch = patch;
    version->sub = sub;
    version->view = PyUnicode_FromString(view);
    return object;
}

int PyShVersionAttr_Compare(const int* reference, PyObject* version) {
    const Parts wanted{reference[0], reference[1], reference[2], reference[3]};
    const std::strong_ordering order = wanted <=> parts_of(version);
    return std::is_lt(order) ? -1 : std::is_gt(order) ? 1 : 0;
}

PyObject* PyShVersionAttr_GetView(PyObject* version) {
    return as_version(version)->view;
}
