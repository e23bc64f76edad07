#pragma once

#include "collections/argument_conversion.h"
#include "collections/collection_slots.h"
#include "collections/generic_hosts.h"
#include "collections/interop_wrappers.h"
#include "collections/typed_callbacks.h"
#include "collections/wrapper_state.h"
#include "collections/wrapper_tables.h"
#include "wrappers/casts.h"

// The typed wrappers of the module `velbor.voxlar._wrpgen._generic`: one class template a kind. The generated
// code names a static type object for each instantiation, `Type`, and says of its element type, `G`:
//
//   Element   its form (element.h)
//   kTag      its tag
//
// `Enumerator` is the type object of the element's enumerator.

#define VELBOR_GENERIC_NAME "velbor.voxlar._wrpgen._generic."

/// The rows that close every typed wrapper's method table.
#define VELBOR_GENERIC_TAIL(Casts) VELBOR_GET_TYPE_ROW, VELBOR_CLASS_CAST_ROWS(Casts), VELBOR_LAST_ROW

/// An enumerable of one element type. There is no wrapper type of its own: classes of the wrapped API and the
/// other kinds take their `tp_iter` from here.
template <class G>
struct GenericIterable {
    using Host = PyHost_gn_Iterable<G>;
    static bool is_not_valid(std::string& message) { return fn_collection_is_not_valid<Host>(message); }

    template <PyTypeObject& Enumerator>
    static PyObject* iter(PyObject* self) {
        return fn_new_enumerator(Host::get_instance(), fn_wrapper_handle(self), Enumerator);
    }
};

/// The type object of a typed collection. `Kind` is one of the templates below, instantiated: it gives its
/// methods, its slots and its check.
template <class Kind, FixedText Name, class G, PyTypeObject& Enumerator>
constexpr PyTypeObject fn_make_typed_collection(PySequenceMethods& sequence, PyMappingMethods& mapping,
                                                PyTypeObject* base = nullptr) {
    return fn_make_collection_type({.name = kJoinedText<Name, G::kTag>.text,
                                    .methods = Kind::methods,
                                    .properties = length_properties<typename Kind::Slots>,
                                    .base = base,
                                    .create = fn_wrapper_tp_new<Kind::invalidate>,
                                    .iterate = GenericIterable<G>::template iter<Enumerator>,
                                    .sequence = &sequence,
                                    .mapping = &mapping});
}

template <class G, PyTypeObject& Type>
struct GenericIter {
    using Host = PyHost_gn_Iter<G>;
    static bool invalidate() {
        return fn_collection_invalidate<Host, wrpPye_bltp_idisposable_is_not_valid>();
    }
    using Casts = InterfaceCasts<Host, Type, invalidate>;

    static PyObject* iternext(PyObject* self) {
        return fn_next_element<typename G::Element>(Host::get_instance(), fn_wrapper_handle(self));
    }

    static inline PyMethodDef methods[] = {VELBOR_DISPOSABLE_ROWS, VELBOR_GENERIC_TAIL(Casts)};

    static constexpr PyTypeObject make_type() {
        return fn_make_collection_type(
            {.name = kJoinedText<VELBOR_GENERIC_NAME "_IterWrapper_", G::kTag>.text,
             .methods = methods,
             .create = fn_wrapper_tp_new<invalidate>,
             .iterate = wrpPye_bltp_iter_iter,
             .next = iternext});
    }
};

/// A collection without element access, which can grow.
template <class G, PyTypeObject& Type, PyTypeObject& Enumerator>
struct GenericICol {
    using Host = PyHost_gn_ICol<G>;
    static bool invalidate() { return fn_collection_invalidate<Host, GenericIterable<G>::is_not_valid>(); }
    using Slots = CollectionSlots<SingleHostAccess<Host, typename G::Element, false>>;

    struct Casts : InterfaceCasts<LateCastHost<Host>, Type, invalidate> {
        /// As on every other wrapper, but an absent entry point shows as its error.
        static PyObject* is_assignable(PyObject* self, PyObject* object) {
            PyRef answer = PyRef::steal(
                InterfaceCasts<LateCastHost<Host>, Type, invalidate>::is_assignable(self, object));
            return PyErr_Occurred() == nullptr ? answer.release() : nullptr;
        }
    };

    static inline PyMethodDef methods[] = {VELBOR_ROW_APPEND(Slots),       VELBOR_ROW_REMOVE(Slots),
                                           VELBOR_ROW_CLEAR(Slots),        VELBOR_ROW_EXTEND(Slots),
                                           VELBOR_ROW_CONTAINS(Slots),     VELBOR_ROW_COUNT(Slots),
                                           VELBOR_ROW_COPY_WALKING(Slots), VELBOR_GENERIC_TAIL(Casts)};

    static constexpr PyTypeObject make_type() {
        return fn_make_typed_collection<GenericICol, VELBOR_GENERIC_NAME "_IColWrapper_", G, Enumerator>(
            growing_walked_sequence<Slots>, length_mapping<Slots>);
    }
};

template <class G, PyTypeObject& Type, PyTypeObject& Enumerator>
struct GenericIList {
    using Host = PyHost_gn_IList<G>;
    using ColHost = PyHost_gn_ICol<G>;
    static bool col_is_not_valid(std::string& message) {
        return fn_collection_is_not_valid<ColHost>(message);
    }
    static bool invalidate() {
        return fn_collection_invalidate<Host, col_is_not_valid, GenericIterable<G>::is_not_valid>();
    }
    using Slots = CollectionSlots<SplitHostAccess<Host, ColHost, ColHost, typename G::Element>>;
    using Casts = InterfaceCasts<Host, Type, invalidate>;

    static inline PyMethodDef methods[] = {
        VELBOR_ROW_EXTEND(Slots),  VELBOR_ROW_INSERT(Slots), VELBOR_ROW_POP(Slots),
        VELBOR_ROW_INDEX(Slots),   VELBOR_ROW_COUNT(Slots),  VELBOR_ROW_SORT(Slots),
        VELBOR_ROW_REVERSE(Slots), VELBOR_ROW_COPY(Slots),   VELBOR_ROW_APPEND(Slots),
        VELBOR_ROW_REMOVE(Slots),  VELBOR_ROW_CLEAR(Slots),  VELBOR_ROW_CONTAINS(Slots),
        VELBOR_GENERIC_TAIL(Casts)};

    static constexpr PyTypeObject make_type() {
        return fn_make_typed_collection<GenericIList, VELBOR_GENERIC_NAME "_IListWrapper_", G, Enumerator>(
            list_sequence<Slots>, item_mapping<Slots>);
    }

    static constexpr InterfaceArgument argument = {
        &Type, invalidate, fn_is_assignable<Host, const VariantArg*>, fn_take_list, "IList"};
};

template <class G, PyTypeObject& Type, PyTypeObject& Enumerator>
struct GenericList {
    using Host = PyHost_gn_List<G>;
    static bool invalidate() { return fn_collection_invalidate<Host, GenericIterable<G>::is_not_valid>(); }
    using Slots = CollectionSlots<SingleHostAccess<Host, typename G::Element, true>>;
    using Casts = ClassCasts<Host, Type, invalidate>;

    static inline PyMethodDef methods[] = {VELBOR_LIST_ROWS(Slots), VELBOR_GENERIC_TAIL(Casts)};

    static constexpr PyTypeObject make_type() {
        return fn_make_typed_collection<GenericList, VELBOR_GENERIC_NAME "_ListWrapper_", G, Enumerator>(
            list_sequence<Slots>, item_mapping<Slots>);
    }

    static constexpr ClassArgument argument = {&Type, invalidate, fn_is_assignable<Host, void*>, "List"};
};

template <class G, PyTypeObject& Type, PyTypeObject& Enumerator>
struct GenericArray {
    using Host = PyHost_gn_Array<G>;
    static bool invalidate() { return fn_collection_invalidate<Host, GenericIterable<G>::is_not_valid>(); }
    using Slots = CollectionSlots<SingleHostAccess<Host, typename G::Element, false>>;
    using Casts = ClassCasts<Host, Type, invalidate>;

    static inline PyMethodDef methods[] = {VELBOR_ARRAY_ROWS(Slots), VELBOR_GENERIC_TAIL(Casts)};

    /// The one kind with a base: a typed array is taken where the untyped one is declared.
    static constexpr PyTypeObject make_type() {
        return fn_make_typed_collection<GenericArray, VELBOR_GENERIC_NAME "_ArrayWrapper_", G, Enumerator>(
            array_sequence<Slots>, item_mapping<Slots>, &wrpPye_tyds_ArrayWrapper);
    }

    static constexpr ClassArgument argument = {&Type, invalidate, fn_is_assignable<Host, void*>, "Array"};
};

/// An array argument whose element type has no wrapper: the host is there for "btp_IsAssignable" alone.
template <class G>
struct UnwrappedArray {
    using Host = PyHost_gn_Array<G>;
    static bool invalidate() { return fn_collection_invalidate<Host>(); }
    static constexpr ClassArgument argument = {nullptr, invalidate, fn_is_assignable<Host, void*>, "Array"};
};
