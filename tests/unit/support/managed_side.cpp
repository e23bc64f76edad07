#include "managed_side.h"

#include "exchange/exchange_host.h"
#include "exchange/object_host.h"
#include "host/host_environment.h"
#include "marshal/records.h"
#include "marshal/strings.h"
#include "wrappers/capsules.h"
#include "wrappers/clr_object.h"
#include "wrappers/markers.h"
#include "wrappers/results.h"

#include <cstdlib>
#include <stdexcept>

namespace {

ManagedSide* g_managed = nullptr;

constexpr char Exchange[] = "Velbor.WrpGen.Interop.ExchangeHost";
constexpr char Object[] = "Velbor.WrpGen.Interop.ObjectHost";

// The exchange host
// ---------------------------------------------------------------------------------------------

void** get_type_name(void* handle) {
    if (g_managed->enter("GetTypeName")) {
        return nullptr;
    }
    const std::string& name = g_managed->at(handle).type;
    const std::u16string wide(name.begin(), name.end());
    return fn_create_u16_buffer(wide.c_str(), static_cast<int>(wide.size()));
}

void free_instance(void* handle) {
    g_managed->record("FreeInstance");
    g_managed->free(handle);
}

void* box(void* handle) {
    return g_managed->enter("BoxStcTarget") ? nullptr : g_managed->make(g_managed->at(handle));
}

void take_callback(void*) {}

// The object host
// -----------------------------------------------------------------------------------------------

template <char Kind>
std::string named(const char* operation) {
    return std::string(operation) + (Kind == 'o' ? "OfObj" : "OfStc");
}

template <char Kind>
std::int32_t to_string(void* handle, void** text) {
    if (g_managed->enter(named<Kind>("ToString").c_str()) || g_managed->without_text) {
        return 0;
    }
    *text = PyUnicode_FromString(g_managed->at(handle).text.c_str());
    return 1;
}

template <char Kind>
std::int32_t get_hash(void* handle) {
    return g_managed->enter(named<Kind>("GetHash").c_str()) ? 0 : g_managed->at(handle).hash;
}

template <char Kind>
std::int32_t is_equals(void* handle, VariantArg* other) {
    if (g_managed->enter(named<Kind>("IsEquals").c_str())) {
        return 0;
    }
    if (other->payload == nullptr) {
        g_managed->record("null:" + std::to_string(other->kind));
        return 0;
    }
    g_managed->record("kind:" + std::to_string(other->kind));
    // Only the low byte of the answer counts.
    return g_managed->at(handle).value == g_managed->at(other->payload).value ? 0x7F01 : 0x7F00;
}

template <char Kind>
std::int32_t get_type(void*, void** type) {
    if (g_managed->enter(Kind == 'o' ? "GetObjType" : "GetStcType")) {
        return 0;
    }
    *type = g_managed->make({.type = "System.Type"});
    return 1;
}

void dispose(void*) {
    g_managed->enter("Dispose");
}

// The capsules: values of the sibling modules are tuples here
// ---------------------------------------------------

PyObject* make_tuple(const char* kind, void* handle) {
    g_managed->free(handle);
    return Py_BuildValue("(s)", kind);
}

PyObject* make_type(void* handle) {
    return make_tuple("Type", handle);
}
PyObject* make_object(void* handle) {
    return make_tuple("Object", handle);
}
PyObject* make_enum(void* handle) {
    return make_tuple("Enum", handle);
}

int take_tuple(PyObject* value, const char* kind, void** out) {
    if (!PyTuple_Check(value) || PyTuple_GET_SIZE(value) != 1 ||
        PyUnicode_CompareWithASCIIString(PyTuple_GET_ITEM(value, 0), kind) != 0) {
        return 0;
    }
    *out = value;
    return 1;
}

int take_type(PyObject* value, void** out) {
    return take_tuple(value, "Type", out);
}
int take_object(PyObject* value, void** out) {
    return take_tuple(value, "Object", out);
}

// A cast's result is (status,) or (status, value).
PyObject* make_cast_result(int status, PyObject* value) {
    return value == nullptr ? Py_BuildValue("(i)", status) : Py_BuildValue("(iO)", status, value);
}

// The wrapper types
// ---------------------------------------------------------------------------------------------

constexpr WrapperTypeParts parts(const char* name, PyTypeObject* base = nullptr) {
    return {.name = name, .base = base, .create = fn_wrapper_tp_new<invalidate_types>};
}

void foreign_dealloc(PyObject* self) {
    if (void* handle = fn_wrapper_handle(self)) {
        g_managed->free(handle);
    }
    Py_TYPE(self)->tp_free(self);
}

constexpr PyTypeObject foreign(const char* name) {
    PyTypeObject type = fn_make_class_type(parts(name));
    type.tp_dealloc = foreign_dealloc;
    return type;
}

void ready_types() {
    for (PyTypeObject* type :
         {&ThingType, &SpecialThingType, &PointType, &NamedType, &ForeignThingType, &ForeignPointType}) {
        const bool is_struct = type == &PointType || type == &ForeignPointType;
        if (PyType_Ready(type) != 0 || !fn_set_castable_type_markattr(type, Py_None) ||
            !(is_struct ? fn_set_stc_type_host_markattr(type) : fn_set_obj_type_host_markattr(type))) {
            throw std::runtime_error("types are not ready");
        }
    }
    for (PyTypeObject* type : {&SpecialThingType, &ForeignThingType}) {
        if (!fn_set_additional_ifcs_markattr(type, 1, &NamedType) ||
            !fn_set_implicit_ifcs_markattr(type, 1, &NamedType)) {
            throw std::runtime_error("types are not marked");
        }
    }
}

void bind_hosts() {
    if (!ExchangeHost::get_instance().initialize("WrpInterop.Test")) {
        throw std::runtime_error(ExchangeHost::get_instance().error_msg());
    }
    if (ObjectHost::get_instance().is_not_valid()) {
        throw std::runtime_error(ObjectHost::get_instance().error_msg());
    }
}

}  // namespace

// The host environment of the test program: it looks entry points up here instead of in a runtime.

HostEnvironment* HostEnvironment::instance(const char*, bool, const char*, const char*, const char*,
                                           const char*) {
    alignas(HostEnvironment) static unsigned char never_read[sizeof(HostEnvironment)];
    return reinterpret_cast<HostEnvironment*>(never_read);
}

std::int32_t HostEnvironment::try_create_delegate(const char*, const char* type, const char* method,
                                                  void** out) const {
    return ManagedSide::instance().resolve(type, method, out);
}

bool types_are_invalid = false;

bool invalidate_types() {
    if (types_are_invalid) {
        PyErr_SetString(PyExc_TypeError, "host is not bound");
    }
    return types_are_invalid;
}

constinit PyTypeObject ThingType = fn_make_class_type(parts("test.Thing"));
constinit PyTypeObject SpecialThingType = fn_make_class_type(parts("test.SpecialThing", &ThingType));
constinit PyTypeObject PointType = fn_make_struct_type(parts("test.Point"));
constinit PyTypeObject NamedType = fn_make_class_type(parts("test.INamed"));
constinit PyTypeObject ForeignThingType = foreign("other.Thing");
constinit PyTypeObject ForeignPointType = foreign("other.Point");

PyObject* make_wrapper(PyTypeObject& type, ManagedObject object) {
    return fn_py_clr_type_generic_new(g_managed->make(std::move(object)), &type);
}

ManagedSide& ManagedSide::start() {
    static ManagedSide instance;
    if (g_managed == nullptr) {
        g_managed = &instance;
        for (const char* method :
             {"SetExceptionCallback", "SetCatchAndClearErrorCallback", "SetU16StrBuilderCallback",
              "SetPyStrBuilderCallback", "SetPyUnraisableStrBuilderCallback", "SetPyBytesBuilderCallback",
              "SetPyObjApiCallbacks", "SetPyStaticCallbacks", "SetPyGenericCallbacks", "FreePendingArgs",
              "InitServices"}) {
            instance.offer(Exchange, method, take_callback);
        }
        instance.offer(Exchange, "GetTypeName", get_type_name);
        instance.offer(Exchange, "FreeInstance", free_instance);
        instance.offer(Exchange, "BoxStcTarget", box);
        instance.offer(Object, "ToStringOfObj", to_string<'o'>);
        instance.offer(Object, "ToStringOfStc", to_string<'s'>);
        instance.offer(Object, "GetHashOfObj", get_hash<'o'>);
        instance.offer(Object, "GetHashOfStc", get_hash<'s'>);
        instance.offer(Object, "IsEqualsOfObj", is_equals<'o'>);
        instance.offer(Object, "IsEqualsOfStc", is_equals<'s'>);
        instance.offer(Object, "IsTypeOf", take_callback);
        instance.offer(Object, "GetTypeName", take_callback);
        instance.offer(Object, "GetObjType", get_type<'o'>);
        instance.offer(Object, "GetStcType", get_type<'s'>);
        instance.offer(Object, "Dispose", dispose);
        bind_hosts();
        PyShCastOpResult_New = make_cast_result;
        wrpPyl_convcaps_clr_to_py_C08ECFAB_Type = make_type;
        wrpPyl_trancaps_py_to_clr_C08ECFAB_Type = take_type;
        wrpPyl_convcaps_clr_to_py_359C4ED8_Object = make_object;
        wrpPyl_trancaps_py_to_clr_359C4ED8_Object = take_object;
        wrpPyl_convcaps_clr_to_py_738AFABA_Enum = make_enum;
        ready_types();
    }
    instance.m_calls.clear();
    instance.failing.clear();
    instance.without_text = false;
    types_are_invalid = false;
    return instance;
}

std::int32_t ManagedSide::resolve(const char* type, const char* method, void** delegate) {
    looked_up.push_back(method);
    const auto found = m_entries.find(std::string(type) + "." + method);
    if (found == m_entries.end()) {
        return static_cast<int>(0x80131513);
    }
    *delegate = found->second;
    return 0;
}

void* ManagedSide::make(ManagedObject object) {
    // Only the address counts; it is never read.
    void* handle = std::malloc(1);
    m_living[handle] = std::move(object);
    return handle;
}

ManagedObject& ManagedSide::at(void* handle) {
    const auto found = m_living.find(handle);
    if (found == m_living.end()) {
        throw std::runtime_error("no such handle");
    }
    return found->second;
}

void ManagedSide::free(void* handle) {
    EXPECT_EQ(m_living.erase(handle), 1u) << "a handle that is not alive was freed";
    std::free(handle);
}

std::string ManagedSide::calls() {
    std::string text;
    for (const std::string& call : m_calls) {
        text += (text.empty() ? "" : " ") + call;
    }
    m_calls.clear();
    return text;
}

bool ManagedSide::enter(const char* name) {
    record(name);
    if (!failing.contains(name)) {
        return false;
    }
    PyErr_SetString(PyExc_RuntimeError, "managed");
    return true;
}

ManagedSide& ManagedSide::instance() {
    return *g_managed;
}
