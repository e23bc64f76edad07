#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"
#include "wrappers/capsules.h"
#include "wrappers/markers.h"
#include "wrappers/results.h"

#include <type_traits>

// The fixed set of methods by which every wrapper type views an object as itself: `_type_of`, `_cast_to`,
// `_cast_from`, `_is_assignable`, `_reinterpret_obj`, `_cast_as`, and on enums `_as_uni_enum` and `get_type`.
// A type names its family once,
//
//     using Casts_Node = ClassCasts<PyHost_cs_0B_Node, wrpPy_tyds_0B_Node, wrpPy_uafn_0B_Node_invalidate>;
//
// and its method table takes the rows from there: `VELBOR_CLASS_CAST_ROWS(Casts_Node)`.
//
// `Host` is the type host with `get_instance()` and the forwarders `btp_*`; `Type` is the static type object;
// `Invalidate` raises when the type cannot be used.

namespace casts_detail {

/// Ends a call that gave a handle of a System.Type, unless it left an error.
PyObject* finish_type(void* type);

/// Ends a cast: `wrap` runs only when the status tells that the cast succeeded.
template <typename Wrap>
PyObject* finish_cast(int status, Wrap wrap) {
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    if (status == 0) {
        return PyShCastOpResult_New(0, nullptr);
    }
    PyObject* value = wrap();
    if (value == nullptr) {
        return PyErr_Occurred() != nullptr ? nullptr : PyShCastOpResult_New(status, nullptr);
    }
    PyObject* result = PyShCastOpResult_New(status, value);
    Py_DECREF(value);
    return result;
}

/// Reads the handle of a System.Object wrapper, or raises TypeError.
bool take_object(PyObject* object, void** handle);

/// TypeError of a type as which nothing can be reinterpreted; null.
PyObject* refuse_reinterpretation(PyObject* object, const PyTypeObject& type);

}  // namespace casts_detail

// How an argument of `_cast_as` and `_is_assignable` goes to the managed side. `take` gives 1 or 0 without an
// error.

/// By bare handle; wrappers of values and None are refused: classes, enums, lists and arrays of one element
/// type.
struct HandleArgument {
    using Record = void*;
    static int take(PyObject* object, Record* record) {
        return fn_conv_py_obj_to_clr_refobj_not_null_handle(object, record);
    }
    static constexpr auto take_for_cast = take;
    static void* pass(Record& record) { return record; }
};

/// By record; None is refused: structs, interfaces and the other generic wrappers.
struct VariantArgument {
    using Record = VariantArg;
    static int take(PyObject* object, Record* record) {
        return fn_conv_py_obj_to_clr_gen_not_null_handle(object, record);
    }
    static constexpr auto take_for_cast = take;
    static VariantArg* pass(Record& record) { return &record; }
};

/// By record; `_cast_as` hands None to the managed side: the interop wrappers.
struct NullableVariantArgument : VariantArgument {
    static constexpr auto take_for_cast = fn_conv_py_obj_to_clr_gen_handle;
};

/// What all families with an out value share. `Value` has the native form of the out value as `Out`, and
/// turns it into Python with `wrap`.
template <typename Host, typename Value, bool (*Invalidate)(), typename Argument>
struct CastsBase {
    static PyObject* type_of(PyObject*, PyObject*) {
        if (Invalidate()) {
            return nullptr;
        }
        void* type = nullptr;
        Host::get_instance().btp_TypeOf(&type);
        return casts_detail::finish_type(type);
    }

    static PyObject* cast_to(PyObject*, PyObject* object) {
        if (Invalidate()) {
            return nullptr;
        }
        VariantArg record{};
        if (fn_conv_py_obj_to_clr_gen_handle(object, &record) == 0) {
            return PyShCastOpResult_New(0, nullptr);
        }
        typename Value::Out out{};
        const int status = Host::get_instance().btp_CastTo(&record, Value::target(out));
        return casts_detail::finish_cast(status, [&] { return Value::wrap(out); });
    }

    static PyObject* cast_as(PyObject*, PyObject* object) {
        if (Invalidate()) {
            return nullptr;
        }
        typename Argument::Record record{};
        if (Argument::take_for_cast(object, &record) == 0) {
            return PyShCastOpResult_New(0, nullptr);
        }
        typename Value::Out out{};
        const int status = Host::get_instance().btp_CastAs(Argument::pass(record), Value::target(out));
        return casts_detail::finish_cast(status, [&] { return Value::wrap(out); });
    }

    /// No managed value can be cast to a type that is only known at run time; structs have a form of their
    /// own.
    static PyObject* cast_from(PyObject*, PyObject*) { return PyShCastOpResult_New(0, nullptr); }

    static PyObject* is_assignable(PyObject*, PyObject* object) {
        if (Invalidate()) {
            return nullptr;
        }
        typename Argument::Record record{};
        if (Argument::take(object, &record) == 0) {
            Py_RETURN_FALSE;
        }
        return PyBool_FromLong(Host::get_instance().btp_IsAssignable(Argument::pass(record)));
    }

    /// Views a System.Object wrapper as this type.
    static PyObject* reinterpret_obj(PyObject*, PyObject* object) {
        if (Invalidate()) {
            return nullptr;
        }
        void* handle = nullptr;
        if (!casts_detail::take_object(object, &handle)) {
            return nullptr;
        }
        typename Value::Out out{};
        Host::get_instance().btp_ReInterpretObj(handle, Value::target(out));
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        return Value::wrap(out);
    }
};

/// An out handle, wrapped as exactly `Type`.
template <PyTypeObject& Type>
struct WrappedValue {
    using Out = void*;
    static void** target(Out& out) { return &out; }
    static PyObject* wrap(Out out) { return fn_conv_clr_clsobj_to_py_clsobj(out, &Type); }
};

/// Classes, and the generic list and array wrappers.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct ClassCasts : CastsBase<Host, WrappedValue<Type>, Invalidate, HandleArgument> {};

/// Structs without a managed conversion to other types.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct StructCasts : CastsBase<Host, WrappedValue<Type>, Invalidate, VariantArgument> {};

namespace casts_detail {

/// Reads the handle of a System.Type wrapper, or raises TypeError.
bool take_type(PyObject* type, void** handle);

}  // namespace casts_detail

/// Structs that managed code can convert to a type given at run time.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct ConvertibleStructCasts : StructCasts<Host, Type, Invalidate> {
    static PyObject* cast_from(PyObject* self, PyObject* type) {
        void* type_handle = nullptr;
        if (!casts_detail::take_type(type, &type_handle)) {
            return nullptr;
        }
        void* handle = nullptr;
        fn_py_unknown_to_clr_unknown(self, &handle);
        void* out = nullptr;
        const int status = Host::get_instance().btp_CastFrom(handle, type_handle, &out);
        return casts_detail::finish_cast(status,
                                         [&] { return wrpPyl_convcaps_clr_to_py_359C4ED8_Object(out); });
    }
};

/// Interfaces, and the generic wrappers of interfaces: nothing can be reinterpreted as them.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct InterfaceCasts : CastsBase<Host, WrappedValue<Type>, Invalidate, VariantArgument> {
    static PyObject* reinterpret_obj(PyObject*, PyObject* object) {
        return casts_detail::refuse_reinterpretation(object, Type);
    }
};

/// Interop wrappers as which a System.Object can be reinterpreted.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct InteropCasts : CastsBase<Host, WrappedValue<Type>, Invalidate, NullableVariantArgument> {};

/// Interop wrappers of interfaces.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct InteropInterfaceCasts : InteropCasts<Host, Type, Invalidate> {
    static PyObject* reinterpret_obj(PyObject*, PyObject* object) {
        return casts_detail::refuse_reinterpretation(object, Type);
    }
};

/// A managed static class: there are no objects of it, so only `_type_of` asks the managed side.
template <typename Host, PyTypeObject& Type, bool (*Invalidate)()>
struct StaticClassCasts {
    static PyObject* type_of(PyObject*, PyObject*) {
        if (Invalidate()) {
            return nullptr;
        }
        void* type = nullptr;
        Host::get_instance().btp_TypeOf(&type);
        return casts_detail::finish_type(type);
    }
    static PyObject* cast_to(PyObject*, PyObject*) { return PyShCastOpResult_New(0, nullptr); }
    static PyObject* cast_as(PyObject*, PyObject*) { return PyShCastOpResult_New(0, nullptr); }
    static PyObject* cast_from(PyObject*, PyObject*) { return PyShCastOpResult_New(0, nullptr); }
    static PyObject* is_assignable(PyObject*, PyObject*) { Py_RETURN_FALSE; }
    static PyObject* reinterpret_obj(PyObject*, PyObject* object) {
        return casts_detail::refuse_reinterpretation(object, Type);
    }
};

/// A value of a managed enum, made into a member by `Wrap`. `Number` is `int`, or `unsigned char` for a byte
/// enum, which writes one byte of the cleared variable.
template <typename Number, PyObject* (*Wrap)(Number)>
struct EnumValue {
    struct Out {
        std::conditional_t<std::is_signed_v<Number>, int, unsigned> cleared = 0;
    };
    static Number* target(Out& out) { return reinterpret_cast<Number*>(&out.cleared); }
    static PyObject* wrap(Out out) { return Wrap(static_cast<Number>(out.cleared)); }
};

/// Enums, whose rows become descriptors in the class dictionary. `_as_uni_enum` and `get_type` are methods of
/// a member.
template <typename Host, typename Number, PyObject* (*Wrap)(Number), bool (*Invalidate)()>
struct EnumCasts : CastsBase<Host, EnumValue<Number, Wrap>, Invalidate, HandleArgument> {
    static PyObject* as_uni_enum(PyObject* self, PyObject*) {
        Number value{};
        if (Invalidate() || !take_member(self, &value)) {
            return nullptr;
        }
        void* out = nullptr;
        Host::get_instance().btp_AsUniEnum(value, &out);
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        return wrpPyl_convcaps_clr_to_py_738AFABA_Enum(out);
    }

    static PyObject* get_type(PyObject* self, PyObject*) {
        Number value{};
        if (Invalidate() || !take_member(self, &value)) {
            return nullptr;
        }
        void* out = nullptr;
        Host::get_instance().btp_GetType(value, &out);
        return casts_detail::finish_type(out);
    }

private:
    static bool take_member(PyObject* self, Number* value) {
        const long number = PyLong_AsLong(self);
        if (number == -1 && PyErr_Occurred() != nullptr) {
            return false;
        }
        *value = static_cast<Number>(number);
        return true;
    }
};

// Rows of a method table. Their order inside a family is fixed.
// clang-format off

/// After `get_type`, on classes, structs, interfaces and generic wrappers.
#define VELBOR_CLASS_CAST_ROWS(Casts) \
    {"_type_of", Casts::type_of, METH_NOARGS | METH_STATIC, nullptr}, \
    {"_cast_to", Casts::cast_to, METH_O | METH_STATIC, nullptr}, \
    {"_cast_from", Casts::cast_from, METH_O, nullptr}, \
    {"_reinterpret_obj", Casts::reinterpret_obj, METH_O | METH_STATIC, nullptr}, \
    {"_cast_as", Casts::cast_as, METH_O | METH_STATIC, nullptr}, \
    {"_is_assignable", Casts::is_assignable, METH_O | METH_STATIC, nullptr}

/// After `get_type`, on interop wrappers.
#define VELBOR_INTEROP_CAST_ROWS(Casts) \
    {"_type_of", Casts::type_of, METH_NOARGS | METH_STATIC, nullptr}, \
    {"_cast_to", Casts::cast_to, METH_O | METH_STATIC, nullptr}, \
    {"_cast_from", Casts::cast_from, METH_O, nullptr}, \
    {"_is_assignable", Casts::is_assignable, METH_O | METH_STATIC, nullptr}, \
    {"_reinterpret_obj", Casts::reinterpret_obj, METH_O | METH_STATIC, nullptr}, \
    {"_cast_as", Casts::cast_as, METH_O | METH_STATIC, nullptr}

// clang-format on
