#pragma once

#include "collections/bound_host.h"
#include "collections/element.h"
#include "collections/entry_points.h"
#include "collections/fixed_text.h"

// The hosts of the typed collections: one class template a kind, one singleton a kind and element. `G` is
// what the generated code says of an element type: `Element`, its form, and `kTag`, its tag in the managed
// class names.

#define VELBOR_GENERIC_INTERFACE_CASTS(X)                       \
    X(btp_TypeOf, "btp_TypeOf", int(void**))                    \
    X(btp_CastTo, "btp_CastTo", int(const VariantArg*, void**)) \
    X(btp_CastAs, "btp_CastAs", int(const VariantArg*, void**)) \
    X(btp_IsAssignable, "btp_IsAssignable", int(const VariantArg*))

#define VELBOR_GENERIC_CLASS_CASTS(X)                               \
    X(btp_TypeOf, "btp_TypeOf", int(void**))                        \
    X(btp_CastTo, "btp_CastTo", int(const VariantArg*, void**))     \
    X(btp_ReInterpretObj, "btp_ReInterpretObj", int(void*, void**)) \
    X(btp_CastAs, "btp_CastAs", int(void*, void**))                 \
    X(btp_IsAssignable, "btp_IsAssignable", int(void*))

#define VELBOR_GENERIC_ITER_HOST(X)               \
    X(move_next, "MoveNext", int(void*, OutSlot)) \
    VELBOR_GENERIC_INTERFACE_CASTS(X)

#define VELBOR_GENERIC_ITERABLE_HOST(X) X(get_enumerator, "GetEnumerator", int(void*, PyObjectOutArg*))

#define VELBOR_GENERIC_ICOL_HOST(X)                                        \
    X(sq_length, "SqLength", int(void*))                                   \
    X(add, "Add", void(void*, In))                                         \
    X(remove, "Remove", int(void*, In))                                    \
    X(clear, "Clear", void(void*))                                         \
    X(sq_inplace_concat, "SqInplaceConcat", int(void*, const VariantArg*)) \
    X(sq_inplace_repeat, "SqInplaceRepeat", void(void*, int))              \
    X(sq_contains, "SqContains", int(void*, In))                           \
    X(count_of, "CountOf", int(void*, In))

#define VELBOR_GENERIC_ILIST_HOST(X)                                            \
    X(sq_item, "SqGetItem", int(void*, int, OutSlot))                           \
    X(sq_item_nocheck, "SqGetItemNoCheck", ItemUnchecked)                       \
    X(sq_ssitem, "SqSetItem", int(void*, int, In))                              \
    X(sq_ssitem_nocheck, "SqSetItemNoChek", void(void*, int, In))               \
    X(insert, "Insert", void(void*, int, In))                                   \
    X(remove_at, "RemoveAt", int(void*, int))                                   \
    X(pop, "Pop", int(void*, int, int, OutSlot))                                \
    X(sq_inplace_concat, "SqInplaceConcat", int(void*, const VariantArg*))      \
    X(sq_inplace_repeat, "SqInplaceRepeat", void(void*, int))                   \
    X(mp_subscript, "MpSetItems", int(void*, const VariantArg*, int, int, int)) \
    X(mp_remove, "MpRemoveItems", void(void*, int, int, int))                   \
    X(reverse, "Reverse", void(void*))                                          \
    X(sort, "Sort", void(void*, int))                                           \
    X(index_by, "IndexBy", int(void*, int, int, int, int, In))                  \
    X(count_of, "CountOf", int(void*, In))                                      \
    VELBOR_GENERIC_INTERFACE_CASTS(X)

#define VELBOR_GENERIC_LIST_HOST(X) \
    VELBOR_LIST_ENTRIES(X)          \
    VELBOR_GENERIC_CLASS_CASTS(X)

#define VELBOR_GENERIC_ARRAY_HOST(X) \
    VELBOR_ARRAY_ENTRIES(X)          \
    VELBOR_GENERIC_CLASS_CASTS(X)

/// An element that only comes out is never passed.
template <class Element>
struct ElementSignatures {
    using In = typename Element::Passed;
    using OutSlot = typename Element::Out*;
    using ItemUnchecked = typename Element::ItemUnchecked;
};
template <PyObject* (*ToPython)(void*)>
struct ElementSignatures<OutgoingClassElement<ToPython>> {
    using OutSlot = void**;
};

#define VELBOR_GENERIC_HOST(Kind, managed_name, ENTRIES)                                \
    inline constexpr const char* kGenericNamesOf##Kind[] = {ENTRIES(VELBOR_HOST_NAME)}; \
    template <class G>                                                                  \
    class PyHost_gn_##Kind final : public BoundHost<VELBOR_HOST_SIZE(ENTRIES)>,         \
                                   public SingleHost<PyHost_gn_##Kind<G>> {             \
        using Signatures = ElementSignatures<typename G::Element>;                      \
        VELBOR_GENERIC_HOST_FORMS_##Kind                                                \
                                                                                        \
            public : PyHost_gn_##Kind()                                                 \
            : BoundHost(kManagedClass, kGenericNamesOf##Kind) {}                        \
        static constexpr const char* kManagedClass =                                    \
            kJoinedText<"Velbor.WrpGen.Generic." managed_name "_", G::kTag>.text;       \
        VELBOR_HOST_BODY(ENTRIES)                                                       \
    };

#define VELBOR_GENERIC_HOST_FORMS_Iterable
#define VELBOR_GENERIC_HOST_FORMS_Iter using OutSlot = typename Signatures::OutSlot;
#define VELBOR_GENERIC_HOST_FORMS_ICol using In = typename Signatures::In;
#define VELBOR_GENERIC_HOST_FORMS_IList           \
    using In = typename Signatures::In;           \
    using OutSlot = typename Signatures::OutSlot; \
    using ItemUnchecked = typename Signatures::ItemUnchecked;
#define VELBOR_GENERIC_HOST_FORMS_List VELBOR_GENERIC_HOST_FORMS_IList
#define VELBOR_GENERIC_HOST_FORMS_Array VELBOR_GENERIC_HOST_FORMS_IList

VELBOR_GENERIC_HOST(Iter, "SiApiEnumerator", VELBOR_GENERIC_ITER_HOST)
VELBOR_GENERIC_HOST(Iterable, "SiApiEnumerable", VELBOR_GENERIC_ITERABLE_HOST)
VELBOR_GENERIC_HOST(ICol, "SiApiCntCollection", VELBOR_GENERIC_ICOL_HOST)
VELBOR_GENERIC_HOST(IList, "SiApiCntList", VELBOR_GENERIC_ILIST_HOST)
VELBOR_GENERIC_HOST(List, "SiApiList", VELBOR_GENERIC_LIST_HOST)
VELBOR_GENERIC_HOST(Array, "SiApiArray", VELBOR_GENERIC_ARRAY_HOST)

/// One entry point that is looked up when it is first called. The typed collection interfaces bind their
/// casts so: an assembly without them loses the casts and nothing else.
template <class Host, FixedText Name, class Signature>
class LateEntryPoint final : public BoundHost<1>, public SingleHost<LateEntryPoint<Host, Name, Signature>> {
    static constexpr const char* names[1] = {Name.text};

public:
    LateEntryPoint() : BoundHost(Host::kManagedClass, names) {}

    /// Calls it; when it is absent, raises the stored text and gives `failure`.
    template <class... Arguments>
    int operator()(int failure, Arguments... arguments) const {
        if (is_not_valid()) {
            PyErr_SetString(PyExc_TypeError, error_msg().c_str());
            return failure;
        }
        return call<Signature>(0, arguments...);
    }
};

/// The casts of `PyHost_gn_ICol`, in the shape of a host.
template <class Host>
struct LateCastHost {
    static LateCastHost get_instance() { return {}; }

    int btp_TypeOf(void** type) const {
        return LateEntryPoint<Host, "btp_TypeOf", int(void**)>::get_instance()(0, type);
    }
    int btp_CastTo(const VariantArg* object, void** out) const {
        return LateEntryPoint<Host, "btp_CastTo", int(const VariantArg*, void**)>::get_instance()(-1, object,
                                                                                                  out);
    }
    int btp_CastAs(const VariantArg* object, void** out) const {
        return LateEntryPoint<Host, "btp_CastAs", int(const VariantArg*, void**)>::get_instance()(-1, object,
                                                                                                  out);
    }
    int btp_IsAssignable(const VariantArg* object) const {
        return LateEntryPoint<Host, "btp_IsAssignable", int(const VariantArg*)>::get_instance()(-1, object);
    }
};
