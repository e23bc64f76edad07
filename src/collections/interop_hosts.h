#pragma once

#include "collections/bound_host.h"
#include "collections/entry_points.h"

// The hosts of the interop wrappers. Elements cross as variants; what comes out is a Python object that the
// managed side made. Each host is bound on first use.

#define VELBOR_INTERFACE_CASTS(X)                                   \
    X(btp_IsAssignable, "btp_IsAssignable", int(const VariantArg*)) \
    X(btp_TypeOf, "btp_TypeOf", int(void**))                        \
    X(btp_CastTo, "btp_CastTo", int(const VariantArg*, void**))     \
    X(btp_CastAs, "btp_CastAs", int(const VariantArg*, void**))

// "btp_IsAssignable" gets the address of a record from `_is_assignable` and a bare handle from the argument
// converters; the managed side takes both.
#define VELBOR_CLASS_CASTS(X)                                       \
    X(btp_IsAssignable, "btp_IsAssignable", int(const void*))       \
    X(btp_TypeOf, "btp_TypeOf", int(void**))                        \
    X(btp_CastTo, "btp_CastTo", int(const VariantArg*, void**))     \
    X(btp_ReInterpretObj, "btp_ReInterpretObj", int(void*, void**)) \
    X(btp_CastAs, "btp_CastAs", int(const VariantArg*, void**))

#define VELBOR_CREATE_FROM_LIST(X) \
    X(create_instance_from_py_list, "CreateInstanceFromPyList", void*(PyObject*))
#define VELBOR_CREATE_FROM_SEQUENCE(X) \
    X(create_instance_from_py_sequence, "CreateInstanceFromPySequence", void*(PyObject*))
#define VELBOR_CREATE_FROM_ITERABLE(X) \
    X(create_instance_from_py_iterable, "CreateInstanceFromPyIterable", void*(PyObject*))

#define VELBOR_DISPOSABLE_HOST(X) VELBOR_INTERFACE_CASTS(X)

#define VELBOR_ITER_HOST(X)                       \
    X(move_next, "MoveNext", int(void*, OutSlot)) \
    VELBOR_INTERFACE_CASTS(X)

#define VELBOR_ITERABLE_HOST(X)                                     \
    X(get_enumerator, "GetEnumerator", int(void*, PyObjectOutArg*)) \
    VELBOR_CREATE_FROM_ITERABLE(X)                                  \
    VELBOR_INTERFACE_CASTS(X)

#define VELBOR_ICOL_HOST(X)                      \
    X(sq_length, "SqLength", int(void*))         \
    X(sq_contains, "SqContains", int(void*, In)) \
    X(count_of, "CountOf", int(void*, In))       \
    VELBOR_CREATE_FROM_LIST(X)                   \
    VELBOR_CREATE_FROM_ITERABLE(X)               \
    VELBOR_INTERFACE_CASTS(X)

#define VELBOR_ILIST_HOST(X)                                                    \
    X(sq_item, "SqGetItem", int(void*, int, OutSlot))                           \
    X(sq_item_nocheck, "SqGetItemNoCheck", ItemUnchecked)                       \
    X(sq_ssitem, "SqSetItem", int(void*, int, In))                              \
    X(sq_ssitem_nocheck, "SqSetItemNoCheck", void(void*, int, In))              \
    X(add, "Add", void(void*, In))                                              \
    X(insert, "Insert", void(void*, int, In))                                   \
    X(remove, "Remove", int(void*, In))                                         \
    X(remove_at, "RemoveAt", int(void*, int))                                   \
    X(pop, "Pop", int(void*, int, int, OutSlot))                                \
    X(clear, "Clear", void(void*))                                              \
    X(sq_inplace_concat, "SqInplaceConcat", int(void*, const VariantArg*))      \
    X(sq_inplace_repeat, "SqInplaceRepeat", void(void*, int))                   \
    X(mp_subscript, "MpSetItems", int(void*, const VariantArg*, int, int, int)) \
    X(mp_remove, "MpRemoveItems", void(void*, int, int, int))                   \
    X(reverse, "Reverse", void(void*))                                          \
    X(sort, "Sort", void(void*, int))                                           \
    X(index_by, "IndexBy", int(void*, int, int, int, int, In))                  \
    X(sq_contains, "SqContains", int(void*, In))                                \
    X(count_of, "CountOf", int(void*, In))                                      \
    VELBOR_CREATE_FROM_LIST(X)                                                  \
    VELBOR_CREATE_FROM_SEQUENCE(X)                                              \
    VELBOR_INTERFACE_CASTS(X)

#define VELBOR_ARRAY_HOST(X)       \
    VELBOR_ARRAY_ENTRIES(X)        \
    VELBOR_CREATE_FROM_LIST(X)     \
    VELBOR_CREATE_FROM_SEQUENCE(X) \
    VELBOR_CLASS_CASTS(X)

#define VELBOR_ARRLIST_HOST(X)     \
    VELBOR_LIST_ENTRIES(X)         \
    VELBOR_CREATE_FROM_LIST(X)     \
    VELBOR_CREATE_FROM_SEQUENCE(X) \
    VELBOR_CLASS_CASTS(X)

#define VELBOR_COLBASE_HOST(X)     \
    VELBOR_CREATE_FROM_LIST(X)     \
    VELBOR_CREATE_FROM_SEQUENCE(X) \
    VELBOR_CLASS_CASTS(X)

/// How elements cross on every interop host.
struct InteropElementForms {
    using In = const VariantArg*;
    using OutSlot = PyObject**;
    using ItemUnchecked = PyObject*(void*, int);
};

#define VELBOR_INTEROP_HOST(Kind, managed_name, ENTRIES)                                         \
    inline constexpr const char* kNamesOf##Kind[] = {ENTRIES(VELBOR_HOST_NAME)};                 \
    class PyHost_ph_##Kind final : public BoundHost<VELBOR_HOST_SIZE(ENTRIES)>,                  \
                                   public SingleHost<PyHost_ph_##Kind>,                          \
                                   private InteropElementForms {                                 \
    public:                                                                                      \
        PyHost_ph_##Kind() : BoundHost("Velbor.WrpGen.Interop." managed_name, kNamesOf##Kind) {} \
        VELBOR_HOST_BODY(ENTRIES)                                                                \
    };

VELBOR_INTEROP_HOST(Disposable, "SiApiDisposable", VELBOR_DISPOSABLE_HOST)
VELBOR_INTEROP_HOST(Iter, "SiApiEnumerator", VELBOR_ITER_HOST)
VELBOR_INTEROP_HOST(Iterable, "SiApiEnumerable", VELBOR_ITERABLE_HOST)
VELBOR_INTEROP_HOST(ICol, "SiApiCntCollection", VELBOR_ICOL_HOST)
VELBOR_INTEROP_HOST(IList, "SiApiCntList", VELBOR_ILIST_HOST)
VELBOR_INTEROP_HOST(Array, "SiApiArray", VELBOR_ARRAY_HOST)
VELBOR_INTEROP_HOST(ArrList, "SiApiArrayList", VELBOR_ARRLIST_HOST)
VELBOR_INTEROP_HOST(ColBase, "SiApiCollectionBase", VELBOR_COLBASE_HOST)
VELBOR_INTEROP_HOST(RoColBase, "SiApiReadOnlyCollectionBase", VELBOR_COLBASE_HOST)
