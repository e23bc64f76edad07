#include "collections/interop_wrappers.h"

#include "collections/collection_slots.h"
#include "collections/interop_hosts.h"
#include "collections/wrapper_state.h"
#include "collections/wrapper_tables.h"
#include "exchange/object_host.h"
#include "wrappers/casts.h"
#include "wrappers/results.h"

// Validity: the own host, then what the type refers to ---------------------------------------------------

#define VELBOR_DEFINE_VALIDITY(kind, ...)                          \
    bool wrpPye_uafn_##kind##_invalidate() {                       \
        return fn_collection_invalidate<__VA_ARGS__>();            \
    }                                                              \
    bool wrpPye_bltp_##kind##_is_not_valid(std::string& message) { \
        return fn_collection_is_not_valid<__VA_ARGS__>(message);   \
    }

VELBOR_DEFINE_VALIDITY(idisposable, PyHost_ph_Disposable)
VELBOR_DEFINE_VALIDITY(iter, PyHost_ph_Iter)
VELBOR_DEFINE_VALIDITY(iterable, PyHost_ph_Iterable)
VELBOR_DEFINE_VALIDITY(icol, PyHost_ph_ICol, wrpPye_bltp_iterable_is_not_valid)
VELBOR_DEFINE_VALIDITY(ilist, PyHost_ph_IList, wrpPye_bltp_icol_is_not_valid,
                       wrpPye_bltp_iterable_is_not_valid)
VELBOR_DEFINE_VALIDITY(array, PyHost_ph_Array, wrpPye_bltp_iterable_is_not_valid)
VELBOR_DEFINE_VALIDITY(arrlist, PyHost_ph_ArrList, wrpPye_bltp_iterable_is_not_valid)
VELBOR_DEFINE_VALIDITY(colbase, PyHost_ph_ColBase, wrpPye_bltp_ilist_is_not_valid,
                       wrpPye_bltp_icol_is_not_valid, wrpPye_bltp_iterable_is_not_valid)
VELBOR_DEFINE_VALIDITY(rocolbase, PyHost_ph_RoColBase, wrpPye_bltp_icol_is_not_valid,
                       wrpPye_bltp_iterable_is_not_valid)
#undef VELBOR_DEFINE_VALIDITY

// Iteration and disposal -----------------------------------------------------------------------------------

PyObject* wrpPye_bltp_idisposable_enter(PyObject* self, PyObject*) {
    return fn_new_ref(self);
}

PyObject* wrpPye_bltp_idisposable_exit(PyObject* self, PyObject*) {
    ObjectHost::get_instance().dispose(fn_wrapper_handle(self));
    return fn_none_unless_error();
}

PyObject* wrpPye_bltp_iter_iter(PyObject* self) {
    return fn_new_ref(self);
}

PyObject* wrpPye_bltp_iter_iternext(PyObject* self) {
    return fn_next_element<VariantElement>(PyHost_ph_Iter::get_instance(), fn_wrapper_handle(self));
}

PyObject* wrpPye_bltp_iterable_iter(PyObject* self) {
    return fn_new_enumerator(PyHost_ph_Iterable::get_instance(), fn_wrapper_handle(self),
                             wrpPye_tyds_IterWrapper);
}

// Tables ----------------------------------------------------------------------------------------------

namespace {

using IColAccess = SingleHostAccess<PyHost_ph_ICol, VariantElement, false>;
using IListAccess = SplitHostAccess<PyHost_ph_IList, PyHost_ph_IList, PyHost_ph_ICol, VariantElement>;
using ArrayAccess = SingleHostAccess<PyHost_ph_Array, VariantElement, false>;
using ArrListAccess = SingleHostAccess<PyHost_ph_ArrList, VariantElement, true>;

using IColSlots = CollectionSlots<IColAccess>;
using IListSlots = CollectionSlots<IListAccess>;
using ArraySlots = CollectionSlots<ArrayAccess>;
using ArrListSlots = CollectionSlots<ArrListAccess>;

using IDisposableCasts = InteropInterfaceCasts<PyHost_ph_Disposable, wrpPye_tyds_IDisposableWrapper,
                                               wrpPye_uafn_idisposable_invalidate>;
using IterCasts = InteropInterfaceCasts<PyHost_ph_Iter, wrpPye_tyds_IterWrapper, wrpPye_uafn_iter_invalidate>;
using IterableCasts =
    InteropInterfaceCasts<PyHost_ph_Iterable, wrpPye_tyds_IterableWrapper, wrpPye_uafn_iterable_invalidate>;
using IColCasts = InteropInterfaceCasts<PyHost_ph_ICol, wrpPye_tyds_IColWrapper, wrpPye_uafn_icol_invalidate>;
using IListCasts =
    InteropInterfaceCasts<PyHost_ph_IList, wrpPye_tyds_IListWrapper, wrpPye_uafn_ilist_invalidate>;
using ArrayCasts = InteropCasts<PyHost_ph_Array, wrpPye_tyds_ArrayWrapper, wrpPye_uafn_array_invalidate>;
using ArrListCasts =
    InteropCasts<PyHost_ph_ArrList, wrpPye_tyds_ArrListWrapper, wrpPye_uafn_arrlist_invalidate>;
using ColBaseCasts =
    InteropCasts<PyHost_ph_ColBase, wrpPye_tyds_ColBaseWrapper, wrpPye_uafn_colbase_invalidate>;
using RoColBaseCasts =
    InteropCasts<PyHost_ph_RoColBase, wrpPye_tyds_RoColBaseWrapper, wrpPye_uafn_rocolbase_invalidate>;

/// The rows that close every interop wrapper's method table.
#define VELBOR_INTEROP_TAIL(Casts) VELBOR_GET_TYPE_ROW, VELBOR_INTEROP_CAST_ROWS(Casts), VELBOR_LAST_ROW

PyMethodDef disposable_methods[] = {VELBOR_DISPOSABLE_ROWS, VELBOR_INTEROP_TAIL(IDisposableCasts)};
PyMethodDef iter_methods[] = {VELBOR_INTEROP_TAIL(IterCasts)};
PyMethodDef iterable_methods[] = {VELBOR_INTEROP_TAIL(IterableCasts)};

#define VELBOR_ICOL_ROWS \
    VELBOR_ROW_COUNT(IColSlots), VELBOR_ROW_COPY_WALKING(IColSlots), VELBOR_ROW_CONTAINS(IColSlots)

PyMethodDef icol_methods[] = {VELBOR_ICOL_ROWS, VELBOR_INTEROP_TAIL(IColCasts)};
PyMethodDef rocolbase_methods[] = {VELBOR_ICOL_ROWS, VELBOR_INTEROP_TAIL(RoColBaseCasts)};

#define VELBOR_ILIST_ROWS                                                                            \
    VELBOR_ROW_APPEND(IListSlots), VELBOR_ROW_INSERT(IListSlots), VELBOR_ROW_EXTEND(IListSlots),     \
        VELBOR_ROW_REMOVE(IListSlots), VELBOR_ROW_POP(IListSlots), VELBOR_ROW_CLEAR(IListSlots),     \
        VELBOR_ROW_INDEX(IListSlots), VELBOR_ROW_COUNT(IListSlots), VELBOR_ROW_CONTAINS(IListSlots), \
        VELBOR_ROW_SORT(IListSlots), VELBOR_ROW_REVERSE(IListSlots), VELBOR_ROW_COPY(IListSlots)

PyMethodDef ilist_methods[] = {VELBOR_ILIST_ROWS, VELBOR_INTEROP_TAIL(IListCasts)};
PyMethodDef colbase_methods[] = {VELBOR_ILIST_ROWS, VELBOR_INTEROP_TAIL(ColBaseCasts)};

PyMethodDef array_methods[] = {VELBOR_ARRAY_ROWS(ArraySlots), VELBOR_INTEROP_TAIL(ArrayCasts)};
PyMethodDef arrlist_methods[] = {VELBOR_LIST_ROWS(ArrListSlots), VELBOR_INTEROP_TAIL(ArrListCasts)};

}  // namespace

// Types -----------------------------------------------------------------------------------------------

#define VELBOR_INTEROP_NAME "velbor.voxlar._wrpgen._interop."

PyTypeObject wrpPye_tyds_IDisposableWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_IDisposableWrapper",
                             .methods = disposable_methods,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_idisposable_invalidate>});

PyTypeObject wrpPye_tyds_IterWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_IterWrapper",
                             .methods = iter_methods,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_iter_invalidate>,
                             .iterate = wrpPye_bltp_iter_iter,
                             .next = wrpPye_bltp_iter_iternext});

PyTypeObject wrpPye_tyds_IterableWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_IterableWrapper",
                             .methods = iterable_methods,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_iterable_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter});

PyTypeObject wrpPye_tyds_IColWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_IColWrapper",
                             .methods = icol_methods,
                             .properties = length_properties<IColSlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_icol_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &walked_sequence<IColSlots>,
                             .mapping = &length_mapping<IColSlots>});

PyTypeObject wrpPye_tyds_IListWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_IListWrapper",
                             .methods = ilist_methods,
                             .properties = length_properties<IListSlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_ilist_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &list_sequence<IListSlots>,
                             .mapping = &item_mapping<IListSlots>});

PyTypeObject wrpPye_tyds_RoColBaseWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_RoColBaseWrapper",
                             .methods = rocolbase_methods,
                             .properties = length_properties<IColSlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_rocolbase_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &walked_sequence<IColSlots>,
                             .mapping = &length_mapping<IColSlots>});

PyTypeObject wrpPye_tyds_ColBaseWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_ColBaseWrapper",
                             .methods = colbase_methods,
                             .properties = length_properties<IListSlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_colbase_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &list_sequence<IListSlots>,
                             .mapping = &item_mapping<IListSlots>});

PyTypeObject wrpPye_tyds_ArrayWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_ArrayWrapper",
                             .methods = array_methods,
                             .properties = length_properties<ArraySlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_array_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &array_sequence<ArraySlots>,
                             .mapping = &item_mapping<ArraySlots>});

PyTypeObject wrpPye_tyds_ArrListWrapper =
    fn_make_collection_type({.name = VELBOR_INTEROP_NAME "_ArrListWrapper",
                             .methods = arrlist_methods,
                             .properties = length_properties<ArrListSlots>,
                             .create = fn_wrapper_tp_new<wrpPye_uafn_arrlist_invalidate>,
                             .iterate = wrpPye_bltp_iterable_iter,
                             .sequence = &list_sequence<ArrListSlots>,
                             .mapping = &item_mapping<ArrListSlots>});
