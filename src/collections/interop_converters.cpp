#include "collections/interop_converters.h"

#include "collections/argument_conversion.h"
#include "collections/interop_hosts.h"
#include "collections/interop_wrappers.h"

namespace {

// How each kind of host is asked.
template <class Host>
constexpr auto by_record = fn_is_assignable<Host, const VariantArg*>;
template <class Host>
constexpr auto by_handle = fn_is_assignable<Host, void*>;

constexpr InterfaceArgument kIter = {&wrpPye_tyds_IterWrapper, wrpPye_uafn_iter_invalidate,
                                     by_record<PyHost_ph_Iter>, fn_take_iterator, "IEnumerator"};
constexpr InterfaceArgument kIterable = {&wrpPye_tyds_IterableWrapper, wrpPye_uafn_iterable_invalidate,
                                         by_record<PyHost_ph_Iterable>, fn_take_iterable, "IEnumerable"};
constexpr InterfaceArgument kDisposable = {&wrpPye_tyds_IDisposableWrapper,
                                           wrpPye_uafn_idisposable_invalidate,
                                           by_record<PyHost_ph_Disposable>, nullptr, "IDisposable"};
// Both of the next two are refused as "List".
constexpr InterfaceArgument kICollection = {&wrpPye_tyds_IColWrapper, wrpPye_uafn_icol_invalidate,
                                            by_record<PyHost_ph_ICol>, fn_take_sized_iterable, "List"};
constexpr InterfaceArgument kIList = {&wrpPye_tyds_IListWrapper, wrpPye_uafn_ilist_invalidate,
                                      by_record<PyHost_ph_IList>, fn_take_list, "List"};

constexpr ClassArgument kArray = {&wrpPye_tyds_ArrayWrapper, wrpPye_uafn_array_invalidate,
                                  by_handle<PyHost_ph_Array>, "Array"};
constexpr ClassArgument kArrList = {&wrpPye_tyds_ArrListWrapper, wrpPye_uafn_arrlist_invalidate,
                                    by_handle<PyHost_ph_ArrList>, "ArrayList"};
constexpr ClassArgument kColBase = {&wrpPye_tyds_ColBaseWrapper, wrpPye_uafn_colbase_invalidate,
                                    by_handle<PyHost_ph_ColBase>, "CollectionBase"};
constexpr ClassArgument kRoColBase = {&wrpPye_tyds_RoColBaseWrapper, wrpPye_uafn_rocolbase_invalidate,
                                      by_handle<PyHost_ph_RoColBase>, "ReadOnlyCollectionBase"};

}  // namespace

int wrpPye_conv_py_to_clr_iter(PyObject* object, VariantArg* out) {
    return fn_convert_interface_argument(kIter, object, out);
}

int wrpPye_conv_py_to_clr_iterable(PyObject* object, VariantArg* out) {
    return fn_convert_interface_argument(kIterable, object, out);
}

int wrpPye_conv_py_to_clr_idisposable(PyObject* object, VariantArg* out) {
    return fn_convert_interface_argument(kDisposable, object, out);
}

int wrpPye_conv_py_to_clr_icollection(PyObject* object, VariantArg* out) {
    return fn_convert_interface_argument(kICollection, object, out);
}

int wrpPye_conv_py_to_clr_ilist(PyObject* object, VariantArg* out) {
    return fn_convert_interface_argument(kIList, object, out);
}

int wrpPye_conv_py_to_clr_array(PyObject* object, VariantArg* out) {
    return fn_convert_class_argument(kArray, object, out);
}

int wrpPye_conv_py_to_clr_arrlist(PyObject* object, VariantArg* out) {
    return fn_convert_class_argument(kArrList, object, out);
}

int wrpPye_conv_py_to_clr_colbase(PyObject* object, VariantArg* out) {
    return fn_convert_class_argument(kColBase, object, out);
}

int wrpPye_conv_py_to_clr_rocolbase(PyObject* object, VariantArg* out) {
    return fn_convert_class_argument(kRoColBase, object, out);
}
