#include "wrappers/descriptors.h"

#include "startup/py_ref.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace {

// What the five kinds of object have in common
// ----------------------------------------------------------------

using FieldDescr = PyShFieldDescrObject;
using InstanceDescr = PyShInstanceMethodDescrObject;
using StaticDescr = PyShStaticMethodDescrObject;
using MixedDescr = PyShMixMethodDescrObject;
using CMethod = PyShCMethodObject;

template <typename Object>
Object& as(PyObject* object) {
    return *reinterpret_cast<Object*>(object);
}

const char* name_of(const FieldDescr& descr) {
    return descr.def->name;
}
const char* doc_of(const FieldDescr& descr) {
    return descr.def->doc;
}

template <typename Object>
const char* name_of(const Object& object) {
    return object.def->ml_name;
}

template <typename Object>
const char* doc_of(const Object& object) {
    return object.def->ml_doc;
}

template <typename Object>
PyObject* doc_text(PyObject* self) {
    const char* doc = doc_of(as<Object>(self));
    if (doc == nullptr || *doc == '\0') {
        Py_RETURN_NONE;
    }
    return PyUnicode_FromString(doc);
}

template <typename Object>
PyObject* member_repr(const char* format, PyObject* self) {
    const Object& descr = as<Object>(self);
    return PyUnicode_FromFormat(format, name_of(descr), descr.type->tp_name);
}

template <typename Object>
PyObject* method_repr(PyObject* self) {
    return member_repr<Object>("<method '%s' of '%s' objects>", self);
}

bool is_instance(PyObject* object, PyTypeObject* type) {
    return Py_TYPE(object) == type || PyType_IsSubtype(Py_TYPE(object), type);
}

void refuse_object(const char* name, const PyTypeObject* owner, PyObject* object) {
    PyErr_Format(PyExc_TypeError, "descriptor '%s' for '%.100s' objects doesn't apply to a '%.100s' object",
                 name, owner->tp_name, Py_TYPE(object)->tp_name);
}

// The second argument of `__get__` may be anything, and null when Python code passes None.
bool check_type(const char* name, PyObject* type) {
    if (type != nullptr && PyType_Check(type)) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "descriptor '%s' needs a type, not '%s', as arg 2", name,
                 Py_TYPE(type != nullptr ? type : Py_None)->tp_name);
    return false;
}

template <typename Object>
bool check_object(const Object& descr, PyObject* object) {
    if (is_instance(object, descr.type)) {
        return true;
    }
    refuse_object(name_of(descr), descr.type, object);
    return false;
}

// A new object of a type that is readied if need be, its fields still unset and the collector unaware of it.
template <typename Object>
Object* allocate(PyTypeObject& type) {
    if ((type.tp_flags & Py_TPFLAGS_READY) == 0 && PyType_Ready(&type) < 0) {
        return nullptr;
    }
    return PyObject_GC_New(Object, &type);
}

template <typename Object>
PyObject* track(Object* object) {
    PyObject_GC_Track(object);
    return reinterpret_cast<PyObject*>(object);
}

// The field descriptor
// ----------------------------------------------------------------------------------------

PyObject* wrpPye_tpsb_field_descr_tp_repr(PyObject* self) {
    return member_repr<FieldDescr>("<attribute '%s' of '%s' objects>", self);
}

PyObject* wrpPye_tpsb_field_descr_tp_descr_get(PyObject* self, PyObject*, PyObject* type) {
    const FieldDescr& descr = as<FieldDescr>(self);
    if (!check_type(descr.def->name, type)) {
        return nullptr;
    }
    return descr.def->get(nullptr, descr.def->closure);
}

PyObject* wrpPye_bltp_field_descr_doc(PyObject* self, void*) {
    return doc_text<FieldDescr>(self);
}

// The three method descriptors
// --------------------------------------------------------------------------------

PyObject* wrpPye_tpsb_instance_method_descr_tp_repr(PyObject* self) {
    return method_repr<InstanceDescr>(self);
}
PyObject* wrpPye_tpsb_static_method_descr_tp_repr(PyObject* self) {
    return method_repr<StaticDescr>(self);
}
PyObject* wrpPye_tpsb_mixed_method_descr_tp_repr(PyObject* self) {
    return method_repr<MixedDescr>(self);
}

PyObject* wrpPye_bltp_instance_method_descr_doc(PyObject* self, void*) {
    return doc_text<InstanceDescr>(self);
}
PyObject* wrpPye_bltp_static_method_descr_doc(PyObject* self, void*) {
    return doc_text<StaticDescr>(self);
}
PyObject* wrpPye_bltp_mixed_method_descr_doc(PyObject* self, void*) {
    return doc_text<MixedDescr>(self);
}

PyObject* wrpPye_tpsb_static_method_descr_tp_descr_get(PyObject* self, PyObject*, PyObject* type) {
    const StaticDescr& descr = as<StaticDescr>(self);
    return check_type(descr.def->ml_name, type) ? fn_new_ref(descr.callable) : nullptr;
}

PyObject* wrpPye_tpsb_instance_method_descr_tp_descr_get(PyObject* self, PyObject* object, PyObject* type) {
    const InstanceDescr& descr = as<InstanceDescr>(self);
    const bool fits = object != nullptr ? check_object(descr, object) : check_type(descr.def->ml_name, type);
    return fits ? PyShCMethod_New(descr.type, descr.def, object) : nullptr;
}

PyObject* wrpPye_tpsb_mixed_method_descr_tp_descr_get(PyObject* self, PyObject* object, PyObject* type) {
    const MixedDescr& descr = as<MixedDescr>(self);
    if (object != nullptr) {
        return check_object(descr, object) ? PyShCMethod_New(descr.type, descr.def, object) : nullptr;
    }
    return check_type(descr.def->ml_name, type) ? fn_new_ref(descr.static_callable) : nullptr;
}

// The method object
// -------------------------------------------------------------------------------------------

PyObject* wrpPye_tpsb_cmethod_tp_repr(PyObject* self) {
    const CMethod& method = as<CMethod>(self);
    // A static or unbound method has no object to name: its owner and its own address stand in.
    PyTypeObject* type = method.self != nullptr ? Py_TYPE(method.self) : method.type;
    PyObject* shown = method.self != nullptr ? method.self : self;
    return PyUnicode_FromFormat("<extension method %s of %s object at %p>", method.def->ml_name,
                                type->tp_name, static_cast<void*>(shown));
}

PyObject* wrpPye_bltp_cmethod_doc(PyObject* self, void*) {
    return doc_text<CMethod>(self);
}

std::size_t hash_pointer(const void* pointer) {
    return std::rotr(reinterpret_cast<std::uintptr_t>(pointer), 4);
}

Py_hash_t wrpPye_tpsb_cmethod_tp_hash(PyObject* self) {
    const CMethod& method = as<CMethod>(self);
    const std::size_t mixed =
        hash_pointer(method.self) ^ hash_pointer(reinterpret_cast<const void*>(method.def->ml_meth));
    const Py_hash_t hash = static_cast<Py_hash_t>(mixed);
    return hash == -1 ? -2 : hash;
}

PyObject* wrpPye_tpsb_cmethod_tp_richcompare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || !Py_IS_TYPE(self, &wrpPye_tyds_FFFFFFFF_MethodObject) ||
        !Py_IS_TYPE(other, &wrpPye_tyds_FFFFFFFF_MethodObject)) {
        Py_RETURN_NOTIMPLEMENTED;
    }
    const CMethod& left = as<CMethod>(self);
    const CMethod& right = as<CMethod>(other);
    const bool equal = left.self == right.self && left.def->ml_meth == right.def->ml_meth;
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

PyObject* wrpPye_tpsb_cmethod_tp_call(PyObject* self, PyObject* args, PyObject* kwargs) {
    return as<CMethod>(self).call(self, args, kwargs);
}

// How arguments are taken.

Py_ssize_t count_of(PyObject* args) {
    return args == nullptr ? 0 : PyTuple_GET_SIZE(args);
}

bool check_no_arguments(const CMethod& method, Py_ssize_t given) {
    if (given == 0) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "%.200s() takes no arguments (%zd given)", method.def->ml_name, given);
    return false;
}

bool check_one_argument(const CMethod& method, Py_ssize_t given) {
    if (given == 1) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "%.200s() takes exactly one argument (%zd given)", method.def->ml_name,
                 given);
    return false;
}

bool check_no_keywords(const CMethod& method, PyObject* kwargs) {
    if (kwargs == nullptr || PyDict_GET_SIZE(kwargs) == 0) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "%.200s() takes no keyword arguments", method.def->ml_name);
    return false;
}

// The object that an unbound method is called on, borrowed from the arguments.
PyObject* take_self(const CMethod& method, PyObject* args) {
    if (count_of(args) == 0) {
        PyErr_Format(PyExc_TypeError, "unbound method %.200s() needs a 'self' argument", method.def->ml_name);
        return nullptr;
    }
    PyObject* self = PyTuple_GET_ITEM(args, 0);
    if (!is_instance(self, method.type)) {
        refuse_object(method.def->ml_name, method.type, self);
        return nullptr;
    }
    return self;
}

PyObject* call_three(const CMethod& method, PyObject* self, PyObject* args, PyObject* kwargs) {
    return reinterpret_cast<PyCFunctionWithKeywords>(reinterpret_cast<void (*)()>(method.def->ml_meth))(
        self, args, kwargs);
}

PyObject* wrpPye_tpsb_cmethod_tp_call_no_args_linked(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    if (!check_no_arguments(method, count_of(args)) || !check_no_keywords(method, kwargs)) {
        return nullptr;
    }
    return call_three(method, method.self, args, kwargs);
}

PyObject* wrpPye_tpsb_cmethod_tp_call_o_arg_linked(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    if (!check_one_argument(method, count_of(args)) || !check_no_keywords(method, kwargs)) {
        return nullptr;
    }
    return method.def->ml_meth(method.self, PyTuple_GET_ITEM(args, 0));
}

PyObject* wrpPye_tpsb_cmethod_tp_call_with_args_linked(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    return call_three(method, method.self, args, kwargs);
}

PyObject* wrpPye_tpsb_cmethod_tp_call_no_args_unbound(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    PyObject* first = take_self(method, args);
    if (first == nullptr || !check_no_arguments(method, count_of(args) - 1) ||
        !check_no_keywords(method, kwargs)) {
        return nullptr;
    }
    return call_three(method, first, nullptr, kwargs);
}

PyObject* wrpPye_tpsb_cmethod_tp_call_o_arg_unbound(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    PyObject* first = take_self(method, args);
    if (first == nullptr || !check_one_argument(method, count_of(args) - 1) ||
        !check_no_keywords(method, kwargs)) {
        return nullptr;
    }
    return method.def->ml_meth(first, PyTuple_GET_ITEM(args, 1));
}

PyObject* wrpPye_tpsb_cmethod_tp_call_with_args_unbound(PyObject* self, PyObject* args, PyObject* kwargs) {
    const CMethod& method = as<CMethod>(self);
    PyObject* first = take_self(method, args);
    if (first == nullptr) {
        return nullptr;
    }
    // One short of the end: the last positional argument does not reach the function. Callers of the family
    // rely on what this form passes, so it stays.
    const PyRef rest = PyRef::steal(PyTuple_GetSlice(args, 1, count_of(args) - 1));
    return rest ? call_three(method, first, rest.get(), kwargs) : nullptr;
}

ternaryfunc choose_call(const PyMethodDef& def, const PyObject* self) {
    const bool linked = self != nullptr || (def.ml_flags & METH_STATIC) != 0;
    if ((def.ml_flags & METH_NOARGS) != 0) {
        return linked ? wrpPye_tpsb_cmethod_tp_call_no_args_linked
                      : wrpPye_tpsb_cmethod_tp_call_no_args_unbound;
    }
    if ((def.ml_flags & METH_O) != 0) {
        return linked ? wrpPye_tpsb_cmethod_tp_call_o_arg_linked : wrpPye_tpsb_cmethod_tp_call_o_arg_unbound;
    }
    return linked ? wrpPye_tpsb_cmethod_tp_call_with_args_linked
                  : wrpPye_tpsb_cmethod_tp_call_with_args_unbound;
}

// What the collector sees, and how the objects end
// ------------------------------------------------------------

template <typename Object>
int traverse_owner(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(as<Object>(self).type);
    return 0;
}

int traverse_static(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(as<StaticDescr>(self).callable);
    return traverse_owner<StaticDescr>(self, visit, arg);
}

int traverse_mixed(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(as<MixedDescr>(self).static_callable);
    return traverse_owner<MixedDescr>(self, visit, arg);
}

int traverse_cmethod(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(as<CMethod>(self).self);
    return traverse_owner<CMethod>(self, visit, arg);
}

template <typename Object>
void end_object(PyObject* self) {
    Py_XDECREF(as<Object>(self).type);
    PyObject_GC_Del(self);
}

template <typename Object>
void dealloc_owner(PyObject* self) {
    PyObject_GC_UnTrack(self);
    end_object<Object>(self);
}

void dealloc_static(PyObject* self) {
    PyObject_GC_UnTrack(self);
    Py_XDECREF(as<StaticDescr>(self).callable);
    end_object<StaticDescr>(self);
}

void dealloc_mixed(PyObject* self) {
    PyObject_GC_UnTrack(self);
    Py_XDECREF(as<MixedDescr>(self).static_callable);
    end_object<MixedDescr>(self);
}

void dealloc_cmethod(PyObject* self) {
    PyObject_GC_UnTrack(self);
    if (as<CMethod>(self).weak_references != nullptr) {
        PyObject_ClearWeakRefs(self);
    }
    Py_XDECREF(as<CMethod>(self).self);
    end_object<CMethod>(self);
}

// The type objects
// --------------------------------------------------------------------------------------------

constexpr PyGetSetDef doc_property(getter get) {
    return {"__doc__", get, nullptr, nullptr, nullptr};
}
constexpr PyGetSetDef NoMoreProperties{};

PyGetSetDef field_properties[] = {doc_property(wrpPye_bltp_field_descr_doc), NoMoreProperties};
PyGetSetDef instance_properties[] = {doc_property(wrpPye_bltp_instance_method_descr_doc), NoMoreProperties};
PyGetSetDef static_properties[] = {doc_property(wrpPye_bltp_static_method_descr_doc), NoMoreProperties};
PyGetSetDef mixed_properties[] = {doc_property(wrpPye_bltp_mixed_method_descr_doc), NoMoreProperties};
PyGetSetDef cmethod_properties[] = {doc_property(wrpPye_bltp_cmethod_doc), NoMoreProperties};

struct TypeParts {
    const char* name;
    Py_ssize_t size;
    destructor dealloc;
    reprfunc repr;
    traverseproc traverse;
    descrgetfunc get;
    PyGetSetDef* properties;
};

constexpr PyTypeObject make_type(const TypeParts& parts) {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = parts.name;
    type.tp_basicsize = parts.size;
    type.tp_flags = Py_TPFLAGS_HAVE_GC;
    type.tp_dealloc = parts.dealloc;
    type.tp_repr = parts.repr;
    type.tp_traverse = parts.traverse;
    type.tp_descr_get = parts.get;
    type.tp_getset = parts.properties;
    return type;
}

constexpr PyTypeObject make_cmethod_type(const TypeParts& parts) {
    PyTypeObject type = make_type(parts);
    type.tp_hash = wrpPye_tpsb_cmethod_tp_hash;
    type.tp_call = wrpPye_tpsb_cmethod_tp_call;
    type.tp_richcompare = wrpPye_tpsb_cmethod_tp_richcompare;
    type.tp_weaklistoffset = offsetof(CMethod, weak_references);
    return type;
}

}  // namespace

constinit PyTypeObject wrpPye_tyds_FFFFFFFF_FieldDescr =
    make_type({"velbor.voxlar._FieldDescrType", sizeof(FieldDescr), dealloc_owner<FieldDescr>,
               wrpPye_tpsb_field_descr_tp_repr, traverse_owner<FieldDescr>,
               wrpPye_tpsb_field_descr_tp_descr_get, field_properties});

constinit PyTypeObject wrpPye_tyds_FFFFFFFF_InstanceMethodDescr =
    make_type({"velbor.voxlar._InstanceMethodDescrType", sizeof(InstanceDescr), dealloc_owner<InstanceDescr>,
               wrpPye_tpsb_instance_method_descr_tp_repr, traverse_owner<InstanceDescr>,
               wrpPye_tpsb_instance_method_descr_tp_descr_get, instance_properties});

constinit PyTypeObject wrpPye_tyds_FFFFFFFF_StaticMethodDescr =
    make_type({"velbor.voxlar._StaticMethodDescrType", sizeof(StaticDescr), dealloc_static,
               wrpPye_tpsb_static_method_descr_tp_repr, traverse_static,
               wrpPye_tpsb_static_method_descr_tp_descr_get, static_properties});

constinit PyTypeObject wrpPye_tyds_FFFFFFFF_MixMethodDescr =
    make_type({"velbor.voxlar._MixMethodDescrType", sizeof(MixedDescr), dealloc_mixed,
               wrpPye_tpsb_mixed_method_descr_tp_repr, traverse_mixed,
               wrpPye_tpsb_mixed_method_descr_tp_descr_get, mixed_properties});

constinit PyTypeObject wrpPye_tyds_FFFFFFFF_MethodObject =
    make_cmethod_type({"velbor.voxlar._MethodObjectType", sizeof(CMethod), dealloc_cmethod,
                       wrpPye_tpsb_cmethod_tp_repr, traverse_cmethod, nullptr, cmethod_properties});

PyObject* PyShDescr_NewStaticField(PyTypeObject* type, PyGetSetDef* def) {
    auto* descr = allocate<FieldDescr>(wrpPye_tyds_FFFFFFFF_FieldDescr);
    if (descr == nullptr) {
        return nullptr;
    }
    descr->type = fn_new_ref(type);
    descr->def = def;
    return track(descr);
}

PyObject* PyShDescr_NewInstanceMethod(PyTypeObject* type, PyMethodDef* def) {
    auto* descr = allocate<InstanceDescr>(wrpPye_tyds_FFFFFFFF_InstanceMethodDescr);
    if (descr == nullptr) {
        return nullptr;
    }
    descr->type = fn_new_ref(type);
    descr->def = def;
    return track(descr);
}

PyObject* PyShDescr_NewStaticMethod(PyTypeObject* type, PyMethodDef* def) {
    auto* descr = allocate<StaticDescr>(wrpPye_tyds_FFFFFFFF_StaticMethodDescr);
    if (descr == nullptr) {
        return nullptr;
    }
    descr->type = fn_new_ref(type);
    descr->def = def;
    descr->callable = PyShCMethod_New(type, def, nullptr);
    // Out of memory: the half-made object, unknown to the collector, is given up.
    return descr->callable != nullptr ? track(descr) : nullptr;
}

PyObject* PyShDescr_NewMixedMethod(PyTypeObject* type, PyMethodDef* static_def, PyMethodDef* instance_def) {
    auto* descr = allocate<MixedDescr>(wrpPye_tyds_FFFFFFFF_MixMethodDescr);
    if (descr == nullptr) {
        return nullptr;
    }
    descr->type = fn_new_ref(type);
    descr->def = instance_def;
    descr->static_callable = PyShCMethod_New(type, static_def, nullptr);
    return descr->static_callable != nullptr ? track(descr) : nullptr;
}

PyObject* PyShCMethod_New(PyTypeObject* type, PyMethodDef* def, PyObject* self) {
    auto* method = allocate<CMethod>(wrpPye_tyds_FFFFFFFF_MethodObject);
    if (method == nullptr) {
        return nullptr;
    }
    method->def = def;
    method->self = fn_new_xref(self);
    method->weak_references = nullptr;
    method->type = fn_new_ref(type);
    method->call = choose_call(*def, self);
    return track(method);
}
