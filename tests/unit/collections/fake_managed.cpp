#include "collections/fake_managed.h"

#include "host/host_environment.h"
#include "marshal/strings.h"
#include "startup/py_ref.h"
#include "wrappers/clr_object.h"

#include <algorithm>
#include <functional>
#include <sstream>

namespace fake {

namespace {

struct Handle {
    ObjectRef object;
};

int living = 0;

/// Notes a call; true, with an error set, when it is the one that fails.
template <class... Arguments>
bool enter(const char* name, Arguments... arguments) {
    State& now = state();
    if (now.recording) {
        std::ostringstream text;
        text << name << "(";
        [[maybe_unused]] const char* separator = "";
        ((text << separator << arguments, separator = ","), ...);
        text << ")";
        now.calls.push_back(text.str());
    }
    if (now.failing == name && now.fails_after-- == 0) {
        now.failing.clear();
        PyErr_SetString(PyExc_RuntimeError, "managed failure");
        return true;
    }
    return false;
}

using Registry = std::map<std::string, void*>;
Registry& registry() {
    static Registry entries;
    return entries;
}

template <class Function>
void offer(const std::string& type, const std::string& method, Function* function) {
    registry()[type + "." + method] = reinterpret_cast<void*>(function);
}

/// A strong reference that can be copied, for lists of Python values.
class Value {
public:
    Value() = default;
    explicit Value(PyObject* borrowed) : m_object(fn_new_xref(borrowed)) {}
    Value(const Value& other) : m_object(fn_new_xref(other.m_object)) {}
    Value& operator=(const Value& other) {
        PyObject* before = m_object;
        m_object = fn_new_xref(other.m_object);
        Py_XDECREF(before);
        return *this;
    }
    ~Value() { Py_XDECREF(m_object); }
    PyObject* get() const { return m_object; }

private:
    PyObject* m_object = nullptr;
};

// How an element crosses, seen from the managed side: Item is what a list holds.

struct VariantForm {
    using Item = Value;
    using In = const VariantArg*;
    using Out = PyObject*;
    using Unchecked = PyObject*;
    static Item take(In in) { return Item(static_cast<PyObject*>(in->payload)); }
    static void give(const Item& item, Out* out) { *out = fn_new_ref(item.get()); }
    static bool equal(const Item& a, const Item& b) {
        return PyObject_RichCompareBool(a.get(), b.get(), Py_EQ) == 1;
    }
    static bool less(const Item& a, const Item& b) {
        return PyObject_RichCompareBool(a.get(), b.get(), Py_LT) == 1;
    }
    static Item read(PyObject* value) { return Item(value); }
};

template <class T, T (*Read)(PyObject*)>
struct NumberForm {
    using Item = T;
    using In = T;
    using Out = T;
    using Unchecked = T;
    static Item take(In in) { return in; }
    static void give(Item item, Out* out) { *out = item; }
    static bool equal(Item a, Item b) { return a == b; }
    static bool less(Item a, Item b) { return a < b; }
    static Item read(PyObject* value) { return Read(value); }
};
int read_int(PyObject* value) {
    return static_cast<int>(PyLong_AsLong(value));
}
unsigned short read_ushort(PyObject* value) {
    return static_cast<unsigned short>(PyLong_AsLong(value));
}
using DoubleForm = NumberForm<double, PyFloat_AsDouble>;
using IntForm = NumberForm<int, read_int>;
using UShortForm = NumberForm<unsigned short, read_ushort>;

struct StringForm : VariantForm {
    using In = const PyStringArg*;
    static Item take(In in) {
        if (in->length < 0) {
            return Item(Py_None);
        }
        const PyRef text = PyRef::steal(PyUnicode_FromKindAndData(in->char_size, in->chars, in->length));
        return Item(text.get());
    }
};

struct BytesForm : VariantForm {
    using In = const PyBytesArg*;
    static Item take(In in) {
        if (in->length < 0) {
            return Item(Py_None);
        }
        const PyRef bytes =
            PyRef::steal(PyByteArray_FromStringAndSize(static_cast<const char*>(in->bytes), in->length));
        return Item(bytes.get());
    }
};

/// Objects by bare handles.
struct ClassForm {
    using Item = ObjectRef;
    using In = void*;
    using Out = void*;
    using Unchecked = void*;
    static Item take(In in) { return object_of(in); }
    static void give(const Item& item, Out* out) { *out = new_handle(item); }
    static bool equal(const Item& a, const Item& b) { return a == b; }
    static bool less(const Item& a, const Item& b) { return a->id < b->id; }
    static Item read(PyObject* value) {
        return value == Py_None ? nullptr : object_of(fn_wrapper_handle(value));
    }
};

/// Structs and arrays: a record goes in.
struct RecordForm : ClassForm {
    using In = const VariantArg*;
    static Item take(In in) { return object_of(in->payload); }
};

struct InterfaceForm : RecordForm {
    using Out = PyObjectOutArg;
    using Unchecked = void;
    static void give(const Item& item, Out* out) { *out = {new_handle(item), 1}; }
};

template <class Form>
struct List final : Object {
    List() : Object(0) {}
    std::vector<typename Form::Item> items;
};

template <class Form>
struct Enumerator final : Object {
    explicit Enumerator(std::shared_ptr<List<Form>> target) : Object(0), list(std::move(target)) {}
    std::shared_ptr<List<Form>> list;
    std::size_t next = 0;
};

int clamp(int index, int size) {
    return std::clamp(index < 0 ? index + size : index, 0, size);
}

/// The entry points over one element form. `ByLowestRun`: a contiguous run is removed by its lowest index.
template <class Form, bool ByLowestRun>
struct Entries {
    using Item = typename Form::Item;
    using In = typename Form::In;
    using Out = typename Form::Out;
    using Target = List<Form>;

    static std::vector<Item>& items(void* handle) {
        return static_cast<Target*>(object_of(handle).get())->items;
    }
    static int size(void* handle) { return static_cast<int>(items(handle).size()); }

    static int SqLength(void* handle) { return enter("SqLength") ? 0 : size(handle) + state().length_error; }
    static int find(void* handle, const Item& value, int from, int to) {
        for (int i = from; i < to && i < size(handle); ++i) {
            if (Form::equal(items(handle)[static_cast<std::size_t>(i)], value)) {
                return i;
            }
        }
        return -1;
    }
    static int SqContains(void* handle, In in) {
        return enter("SqContains") ? 0 : find(handle, Form::take(in), 0, size(handle)) >= 0;
    }
    static int CountOf(void* handle, In in) {
        if (enter("CountOf")) {
            return 0;
        }
        const Item value = Form::take(in);
        return static_cast<int>(std::count_if(items(handle).begin(), items(handle).end(),
                                              [&](const Item& item) { return Form::equal(item, value); }));
    }
    static int SqGetItem(void* handle, int index, Out* out) {
        if (enter("SqGetItem", index)) {
            return -1;
        }
        if (index < 0 || index >= size(handle)) {
            return 2;
        }
        Form::give(items(handle)[static_cast<std::size_t>(index)], out);
        return 0;
    }
    static auto SqGetItemNoCheckByResult(void* handle, int index) {
        Out out{};
        if (!enter("SqGetItemNoCheck", index)) {
            Form::give(items(handle)[static_cast<std::size_t>(index)], &out);
        }
        return out;
    }
    static void SqGetItemNoCheckByPointer(void* handle, int index, Out* out) {
        *out = SqGetItemNoCheckByResult(handle, index);
    }
    static int SqSetItem(void* handle, int index, In in) {
        if (enter("SqSetItem", index)) {
            return -1;
        }
        if (index < 0 || index >= size(handle)) {
            return 2;
        }
        items(handle)[static_cast<std::size_t>(index)] = Form::take(in);
        return 0;
    }
    static void SqSetItemNoCheck(void* handle, int index, In in) {
        if (!enter("SqSetItemNoCheck", index)) {
            items(handle)[static_cast<std::size_t>(index)] = Form::take(in);
        }
    }
    static void Add(void* handle, In in) {
        if (!enter("Add")) {
            items(handle).push_back(Form::take(in));
        }
    }
    static void Insert(void* handle, int index, In in) {
        if (!enter("Insert", index)) {
            items(handle).insert(items(handle).begin() + clamp(index, size(handle)), Form::take(in));
        }
    }
    static int Remove(void* handle, In in) {
        if (enter("Remove")) {
            return 0;
        }
        const int at = find(handle, Form::take(in), 0, size(handle));
        if (at < 0) {
            return 0;
        }
        items(handle).erase(items(handle).begin() + at);
        return 1;
    }
    static int RemoveAt(void* handle, int index) {
        if (enter("RemoveAt", index)) {
            return -1;
        }
        if (index < 0 || index >= size(handle)) {
            return 2;
        }
        items(handle).erase(items(handle).begin() + index);
        return 0;
    }
    static int Pop(void* handle, int has_index, int index, Out* out) {
        if (enter("Pop", has_index, index)) {
            return -1;
        }
        if (size(handle) == 0) {
            return 1;
        }
        int at = has_index != 0 ? index : -1;
        at = at < 0 ? at + size(handle) : at;
        if (at < 0 || at >= size(handle)) {
            return 2;
        }
        Form::give(items(handle)[static_cast<std::size_t>(at)], out);
        items(handle).erase(items(handle).begin() + at);
        return 0;
    }
    static void Clear(void* handle) {
        if (!enter("Clear")) {
            items(handle).clear();
        }
    }
    static const Target* same_kind(const VariantArg* other) {
        return dynamic_cast<const Target*>(object_of(other->payload).get());
    }
    static int SqInplaceConcat(void* handle, const VariantArg* other) {
        const Target* source = same_kind(other);
        if (enter("SqInplaceConcat", other->kind) || source == nullptr || state().handles_bulk != 1) {
            return source == nullptr ? 0 : state().handles_bulk;
        }
        const std::vector<Item> added = source->items;
        items(handle).insert(items(handle).end(), added.begin(), added.end());
        return 1;
    }
    static void SqInplaceRepeat(void* handle, int count) {
        if (enter("SqInplaceRepeat", count)) {
            return;
        }
        const std::vector<Item> once = items(handle);
        items(handle).clear();
        for (int i = 0; i < count; ++i) {
            items(handle).insert(items(handle).end(), once.begin(), once.end());
        }
    }
    static int MpSetItems(void* handle, const VariantArg* other, int start, int count, int step) {
        const Target* source = same_kind(other);
        if (enter("MpSetItems", other->kind, start, count, step) || source == nullptr ||
            state().handles_bulk != 1) {
            return source == nullptr ? 0 : state().handles_bulk;
        }
        const std::vector<Item> written = source->items;
        for (int i = 0; i < count; ++i) {
            items(handle)[static_cast<std::size_t>(start + i * step)] = written[static_cast<std::size_t>(i)];
        }
        return 1;
    }
    static void MpRemoveItems(void* handle, int start, int count, int step) {
        if (enter("MpRemoveItems", start, count, step) || count <= 0) {
            return;
        }
        if (ByLowestRun && step == -1) {
            items(handle).erase(items(handle).begin() + start, items(handle).begin() + start + count);
            return;
        }
        for (int i = 0; i < count; ++i) {
            items(handle).erase(items(handle).begin() + start + i * step);
        }
    }
    static void Reverse(void* handle) {
        if (!enter("Reverse")) {
            std::reverse(items(handle).begin(), items(handle).end());
        }
    }
    static void Sort(void* handle, int reverse) {
        if (!enter("Sort", reverse)) {
            std::stable_sort(items(handle).begin(), items(handle).end(), [&](const Item& a, const Item& b) {
                return reverse != 0 ? Form::less(b, a) : Form::less(a, b);
            });
        }
    }
    static int IndexBy(void* handle, int has_start, int start, int has_stop, int stop, In in) {
        if (enter("IndexBy", has_start, start, has_stop, stop)) {
            return -1;
        }
        const int count = size(handle);
        return find(handle, Form::take(in), has_start != 0 ? clamp(start, count) : 0,
                    has_stop != 0 ? clamp(stop, count) : count);
    }
    static void EnsureCapacity(void* handle, int count) {
        if (!enter("EnsureCapacity", count) && count > 0) {
            items(handle).reserve(items(handle).size() + static_cast<std::size_t>(count));
        }
    }
    static int GetEnumerator(void* handle, PyObjectOutArg* out) {
        if (enter("GetEnumerator")) {
            return -1;
        }
        *out = {new_handle(
                    std::make_shared<Enumerator<Form>>(std::static_pointer_cast<Target>(object_of(handle)))),
                99};
        return 0;
    }
    static int MoveNext(void* handle, Out* out) {
        if (enter("MoveNext")) {
            return 2;
        }
        auto& walk = static_cast<Enumerator<Form>&>(*object_of(handle));
        if (walk.next >= walk.list->items.size()) {
            return 1;
        }
        Form::give(walk.list->items[walk.next++], out);
        return 0;
    }
    static void* CreateInstance(PyObject*) { return nullptr; }

    static void offer_all(const std::string& type) {
        offer(type, "SqLength", SqLength);
        offer(type, "SqContains", SqContains);
        offer(type, "CountOf", CountOf);
        offer(type, "SqGetItem", SqGetItem);
        if constexpr (std::is_void_v<typename Form::Unchecked>) {
            offer(type, "SqGetItemNoCheck", SqGetItemNoCheckByPointer);
        } else {
            offer(
                type, "SqGetItemNoCheck",
                +[](void* handle, int index) -> Out { return SqGetItemNoCheckByResult(handle, index); });
        }
        offer(type, "SqSetItem", SqSetItem);
        offer(type, "SqSetItemNoCheck", SqSetItemNoCheck);
        offer(type, "SqSetItemNoChek", SqSetItemNoCheck);
        offer(type, "Add", Add);
        offer(type, "Insert", Insert);
        offer(type, "Remove", Remove);
        offer(type, "RemoveAt", RemoveAt);
        offer(type, "Pop", Pop);
        offer(type, "Clear", Clear);
        offer(type, "SqInplaceConcat", SqInplaceConcat);
        offer(type, "SqInplaceRepeat", SqInplaceRepeat);
        offer(type, "MpSetItems", MpSetItems);
        offer(type, "MpRemoveItems", MpRemoveItems);
        offer(type, "Reverse", Reverse);
        offer(type, "Sort", Sort);
        offer(type, "IndexBy", IndexBy);
        offer(type, "EnsureCapacity", EnsureCapacity);
        offer(type, "GetEnumerator", GetEnumerator);
        offer(type, "MoveNext", MoveNext);
        offer(type, "CreateInstanceFromPyList", CreateInstance);
        offer(type, "CreateInstanceFromPySequence", CreateInstance);
        offer(type, "CreateInstanceFromPyIterable", CreateInstance);
    }
};

// Casts: the record form and the handle form.

int btp_TypeOf(void** out) {
    *out = nullptr;
    return enter("btp_TypeOf") ? 0 : (*out = new_handle(std::make_shared<Object>(-1)), 1);
}
int cast(const char* name, void* handle, void** out) {
    if (enter(name, handle == nullptr ? "null" : "handle")) {
        return -1;
    }
    *out = handle == nullptr ? nullptr : new_handle(object_of(handle));
    return state().cast_status;
}
int btp_CastTo(const VariantArg* record, void** out) {
    return cast("btp_CastTo", record->payload, out);
}
int btp_CastAsRecord(const VariantArg* record, void** out) {
    return cast("btp_CastAs", record->payload, out);
}
int btp_CastAsHandle(void* handle, void** out) {
    return cast("btp_CastAs", handle, out);
}
int btp_ReInterpretObj(void* handle, void** out) {
    return cast("btp_ReInterpretObj", handle, out);
}
int btp_IsAssignable(const void*) {
    return enter("btp_IsAssignable") ? 0 : state().assignable;
}

void offer_casts(const std::string& type, bool casts_by_handle) {
    offer(type, "btp_TypeOf", btp_TypeOf);
    offer(type, "btp_CastTo", btp_CastTo);
    if (casts_by_handle) {
        offer(type, "btp_CastAs", btp_CastAsHandle);
    } else {
        offer(type, "btp_CastAs", btp_CastAsRecord);
    }
    offer(type, "btp_ReInterpretObj", btp_ReInterpretObj);
    offer(type, "btp_IsAssignable", btp_IsAssignable);
}

void* new_enumerable_handle(ObjectRef object) {
    return new_handle(std::move(object));
}

template <class Form>
void* collect(PyObject* items) {
    auto list = std::make_shared<List<Form>>();
    const PyRef fast = PyRef::steal(PySequence_Fast(items, "a list is needed"));
    if (!fast) {
        return nullptr;
    }
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(fast.get()); ++i) {
        list->items.push_back(Form::read(PySequence_Fast_GET_ITEM(fast.get(), i)));
    }
    return PyErr_Occurred() != nullptr ? nullptr : new_enumerable_handle(std::move(list));
}

struct TypedForm {
    void* (*collect)(PyObject*);
    void (*offer)(const std::string& tag);
};

template <class Form>
TypedForm typed_form() {
    return {collect<Form>, [](const std::string& tag) {
                for (const char* kind : {"SiApiEnumerator_", "SiApiEnumerable_", "SiApiCntCollection_",
                                         "SiApiCntList_", "SiApiArray_", "SiApiList_"}) {
                    const bool by_handle =
                        std::string(kind) == "SiApiArray_" || std::string(kind) == "SiApiList_";
                    const std::string type = "Velbor.WrpGen.Generic." + (kind + tag);
                    if (std::string(kind) == "SiApiList_") {
                        Entries<Form, true>::offer_all(type);
                    } else {
                        Entries<Form, false>::offer_all(type);
                    }
                    offer_casts(type, by_handle);
                }
            }};
}

const std::map<std::string, TypedForm>& typed_forms() {
    static const std::map<std::string, TypedForm> forms = {
        {"1BA766B5", typed_form<DoubleForm>()},
        {"A4A29720", typed_form<IntForm>()},
        {"57AC8DC4", typed_form<UShortForm>()},
        {"CBE911FC", typed_form<StringForm>()},
        {"8A028265", typed_form<BytesForm>()},
        {"F372CE9B", typed_form<VariantForm>()},
        {"DAF680C1", typed_form<RecordForm>()},
        {"29B75A02", typed_form<RecordForm>()},
        {"361B67C0", typed_form<RecordForm>()},
        {"F44BC945", typed_form<ClassForm>()},
        {"FD7D0633", typed_form<ClassForm>()},
        {"18BDDF85", typed_form<InterfaceForm>()},
        {"48DBC66A", typed_form<InterfaceForm>()},
        {"1FFB0A0F", typed_form<ClassForm>()},
        {"3AC634AC", typed_form<IntForm>()},
        // Element types of the tests alone, for hosts that no other test has bound.
        {"0000000A", typed_form<DoubleForm>()},
        {"0000000B", typed_form<DoubleForm>()},
        {"0000000C", typed_form<ClassForm>()},
    };
    return forms;
}

// The object and the exchange class.

void FreeInstance(void* handle) {
    if (handle != nullptr) {
        --living;
        delete static_cast<Handle*>(handle);
    }
}

void** GetTypeName(void*) {
    return fn_create_u16_buffer(u"Fake.Type", 9);
}
int ToString(void*, void**) {
    return 0;
}
int GetHash(void* handle) {
    return object_of(handle)->id;
}
int IsEquals(void* handle, VariantArg* other) {
    return object_of(handle) == object_of(other->payload) ? 1 : 0;
}
int GetType(void* handle, void** out) {
    *out = new_handle(object_of(handle));
    return 1;
}
void Dispose(void*) {
    enter("Dispose");
}
void nothing() {}

void offer_everything() {
    const std::string exchange = "Velbor.WrpGen.Interop.ExchangeHost";
    for (const char* name :
         {"SetExceptionCallback", "SetCatchAndClearErrorCallback", "SetU16StrBuilderCallback",
          "SetPyStrBuilderCallback", "SetPyUnraisableStrBuilderCallback", "SetPyBytesBuilderCallback",
          "SetPyObjApiCallbacks", "SetPyStaticCallbacks", "SetPyGenericCallbacks", "FreePendingArgs",
          "InitServices", "BoxStcTarget"}) {
        offer(exchange, name, nothing);
    }
    offer(exchange, "GetTypeName", GetTypeName);
    offer(exchange, "FreeInstance", FreeInstance);

    const std::string object = "Velbor.WrpGen.Interop.ObjectHost";
    for (const char* form : {"Obj", "Stc"}) {
        offer(object, std::string("ToStringOf") + form, ToString);
        offer(object, std::string("GetHashOf") + form, GetHash);
        offer(object, std::string("IsEqualsOf") + form, IsEquals);
        offer(object, std::string("Get") + form + "Type", GetType);
    }
    offer(object, "IsTypeOf", nothing);
    offer(object, "GetTypeName", nothing);
    offer(object, "Dispose", Dispose);

    for (const char* name :
         {"SiApiDisposable", "SiApiEnumerator", "SiApiEnumerable", "SiApiCntCollection", "SiApiCntList",
          "SiApiArray", "SiApiArrayList", "SiApiCollectionBase", "SiApiReadOnlyCollectionBase"}) {
        const std::string type = std::string("Velbor.WrpGen.Interop.") + name;
        if (std::string(name) == "SiApiArrayList") {
            Entries<VariantForm, true>::offer_all(type);
        } else {
            Entries<VariantForm, false>::offer_all(type);
        }
        offer_casts(type, false);
    }
    for (const auto& [tag, form] : typed_forms()) {
        form.offer(tag);
    }
}

}  // namespace

void* new_handle(ObjectRef object) {
    if (object == nullptr) {
        return nullptr;
    }
    ++living;
    return new Handle{std::move(object)};
}

ObjectRef object_of(void* handle) {
    return handle == nullptr ? nullptr : static_cast<Handle*>(handle)->object;
}

int living_handles() {
    return living;
}

State& state() {
    static State now;
    return now;
}

void* new_collection(const std::string& tag, PyObject* items) {
    if (tag.empty()) {
        return collect<VariantForm>(items);
    }
    return typed_forms().at(tag).collect(items);
}

}  // namespace fake

HostEnvironment* HostEnvironment::instance(const char*, bool, const char*, const char*, const char*,
                                           const char*) {
    alignas(HostEnvironment) static unsigned char never_read[sizeof(HostEnvironment)];
    return reinterpret_cast<HostEnvironment*>(never_read);
}

std::int32_t HostEnvironment::try_create_delegate(const char*, const char* type, const char* method,
                                                  void** out) const {
    if (fake::registry().empty()) {
        fake::offer_everything();
    }
    const std::string name = std::string(type) + "." + method;
    fake::state().bound.push_back(name);
    if (const auto missing = fake::state().missing.find(name); missing != fake::state().missing.end()) {
        return missing->second;
    }
    const auto found = fake::registry().find(name);
    if (found == fake::registry().end()) {
        return -2146233069;
    }
    *out = found->second;
    return 0;
}
