#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

// The entry points that hosts of several kinds share, in binding order. `In` is how an element is passed,
// `OutSlot` the pointer through which one comes out, `ItemUnchecked` the signature of the unchecked read; the
// host class names the three. The spelling "SqSetItemNoChek" is the managed side's.

#define VELBOR_ARRAY_ENTRIES(X)                                                 \
    X(sq_length, "SqLength", int(void*))                                        \
    X(sq_contains, "SqContains", int(void*, In))                                \
    X(sq_item, "SqGetItem", int(void*, int, OutSlot))                           \
    X(sq_item_nocheck, "SqGetItemNoCheck", ItemUnchecked)                       \
    X(sq_ssitem, "SqSetItem", int(void*, int, In))                              \
    X(sq_ssitem_nocheck, "SqSetItemNoChek", void(void*, int, In))               \
    X(mp_subscript, "MpSetItems", int(void*, const VariantArg*, int, int, int)) \
    X(reverse, "Reverse", void(void*))                                          \
    X(sort, "Sort", void(void*, int))                                           \
    X(index_by, "IndexBy", int(void*, int, int, int, int, In))                  \
    X(count_of, "CountOf", int(void*, In))

#define VELBOR_LIST_ENTRIES(X)                                                  \
    X(sq_length, "SqLength", int(void*))                                        \
    X(add, "Add", void(void*, In))                                              \
    X(remove, "Remove", int(void*, In))                                         \
    X(clear, "Clear", void(void*))                                              \
    X(sq_contains, "SqContains", int(void*, In))                                \
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
    X(ensure_capacity, "EnsureCapacity", void(void*, int))
