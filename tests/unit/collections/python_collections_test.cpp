#include "collections/fixture.h"

#include "collections/python_collections.h"
#include "collections/python_forms.h"
#include "generics.h"
#include "types.h"
#include "wrappers/clr_object.h"

// The callbacks by which managed code works on Python collections.

namespace {

class PythonCollections : public Collections {
protected:
    void SetUp() override {
        Collections::SetUp();
        run(R"py(
class Raises:
    def __eq__(self, other): raise KeyError('compared')
    __hash__ = None
class Items:
    def __init__(self, items): self.items = items
    def __len__(self): return len(self.items)
    def __getitem__(self, i): return self.items[i]
class Refuses:
    def __len__(self): raise KeyError('no length')
    def __getitem__(self, i): raise KeyError('no item')
    def pop(self, i): raise KeyError('no pop')
    def clear(self): raise KeyError('no clear')
class NotIterator:
    def __iter__(self): return 5
)py");
    }
};

int status_of(int status, const char* error) {
    EXPECT_EQ(take_error(), error);
    return status;
}

PyObject* new_ref_to(const PyRef& object) {
    return fn_new_ref(object.get());
}

TEST_F(PythonCollections, Forms) {
    for (const char* sized : {"[]", "()", "{}", "set()", "''", "range(3)"}) {
        EXPECT_TRUE(PyShlObject_HasLength(eval(sized).get())) << sized;
        EXPECT_TRUE(PyShlObject_HasIter(eval(sized).get())) << sized;
    }
    const PyRef generator = eval("(i for i in ())");
    EXPECT_FALSE(PyShlObject_HasLength(generator.get()));
    EXPECT_TRUE(PyShlObject_HasIter(generator.get()));
    EXPECT_FALSE(PyShlObject_HasIter(eval("5").get()));
    EXPECT_TRUE(has_sized_sequence(eval("Items([])").get()));
    EXPECT_FALSE(has_sized_sequence(eval("{}").get()));
}

TEST_F(PythonCollections, NextItem) {
    const PyRef value = eval("['text']");
    const PyRef iterator = eval("iter(['text', object()])");
    PyObject* item = nullptr;
    VariantArg record;
    EXPECT_EQ(fn_clbk_iter_next(iterator.get(), &item, &record), 0);
    EXPECT_EQ(repr_of(item), "'text'");
    EXPECT_EQ(record.kind, 3);
    EXPECT_EQ(record.payload, item);
    Py_DECREF(item);
    item = nullptr;
    EXPECT_EQ(status_of(fn_clbk_iter_next(iterator.get(), &item, &record), "TypeError: unknown variant type"),
              2);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(fn_clbk_iter_next(iterator.get(), &item, &record), 1);
    run("def failing():\n    yield 1\n    raise KeyError('later')");
    const PyRef failing = eval("failing()");
    EXPECT_EQ(fn_clbk_iter_next(failing.get(), &item, &record), 0);
    Py_DECREF(item);
    EXPECT_EQ(status_of(fn_clbk_iter_next(failing.get(), &item, &record), "KeyError: 'later'"), 2);
}

TEST_F(PythonCollections, AFailedItemIsNotLeaked) {
    const PyRef list = eval("[object()]");
    PyObject* element = PyList_GET_ITEM(list.get(), 0);
    const SameReferences same(element);
    PyObject* item = nullptr;
    VariantArg record;
    const PyRef iterator = PyRef::steal(PyObject_GetIter(list.get()));
    EXPECT_EQ(fn_clbk_iter_next(iterator.get(), &item, &record), 2);
    EXPECT_EQ(fn_clbk_oseq_get_item(list.get(), 0, &record), -1);
    EXPECT_EQ(fn_clbk_olist_get_item(list.get(), 0, &record), -1);
    PyErr_Clear();
}

TEST_F(PythonCollections, Lengths) {
    const PyRef list = eval("[1, 2, 3]");
    EXPECT_EQ(fn_clbk_ucol_list_length(list.get()), 3);
    EXPECT_EQ(fn_clbk_ucol_list_longlength(list.get()), 3);
    EXPECT_EQ(fn_clbk_ucol_sequence_length(list.get()), 3);
    EXPECT_EQ(fn_clbk_ucol_sequence_longlength(eval("(1,)").get()), 1);
    EXPECT_EQ(fn_clbk_ucol_object_length(eval("{1: 2}").get()), 1);
    EXPECT_EQ(status_of(static_cast<int>(fn_clbk_ucol_object_length(eval("Refuses()").get())),
                        "KeyError: 'no length'"),
              -1);
    EXPECT_EQ(fn_clbk_ucol_list_length(eval("()").get()), -1);
    PyErr_Clear();
}

TEST_F(PythonCollections, RemoveAtAndClear) {
    run("x = [1, 2, 3]");
    const PyRef list = eval("x");
    EXPECT_EQ(fn_clbk_ucol_remove_at(list.get(), 1), 0);
    EXPECT_EQ(repr_of(list.get()), "[1, 3]");
    EXPECT_EQ(status_of(fn_clbk_ucol_remove_at(list.get(), 7), "IndexError: pop index out of range"), -2);
    EXPECT_EQ(status_of(fn_clbk_ucol_remove_at(eval("Refuses()").get(), 0), "KeyError: 'no pop'"), -1);
    EXPECT_EQ(fn_clbk_ucol_clear(list.get()), 0);
    EXPECT_EQ(PyList_GET_SIZE(list.get()), 0);
    EXPECT_EQ(status_of(fn_clbk_ucol_clear(eval("Refuses()").get()), "KeyError: 'no clear'"), -1);
    EXPECT_EQ(fn_clbk_ucol_clear(eval("()").get()), -1);
    PyErr_Clear();
}

TEST_F(PythonCollections, Enumerators) {
    for (const char* iterable : {"[]", "range(3)", "Items([])", "iter([])"}) {
        const PyRef iterator = PyRef::steal(fn_clbk_ucol_get_enumerator(eval(iterable).get()));
        EXPECT_TRUE(iterator && PyIter_Check(iterator.get())) << iterable;
    }
    EXPECT_EQ(fn_clbk_ucol_get_enumerator(eval("5").get()), nullptr);
    EXPECT_EQ(take_error(), "TypeError: 'int' object is not iterable");
    EXPECT_EQ(fn_clbk_ucol_get_enumerator(eval("NotIterator()").get()), nullptr);
    EXPECT_EQ(take_error(), "TypeError: iter() returned non-iterator of type 'int'");
}

TEST_F(PythonCollections, FastLists) {
    PyObject* list = nullptr;
    PyObject** items = fn_clbk_ucol_create_fast_list(2, &list);
    ASSERT_NE(items, nullptr);
    const PyRef value = eval("object()");
    {
        const PyRef owner = PyRef::steal(list);
        const SameReferences same(list);
        fn_clbk_olist_set_fast_item(items, 0, new_ref_to(value));
        fn_clbk_olist_set_fast_item(items, 1, new_ref_to(value));
        EXPECT_EQ(PyList_GET_ITEM(list, 1), value.get());
    }
    EXPECT_EQ(Py_REFCNT(value.get()), 1);
    fn_clbk_ucol_create_fast_longlist(0, &list);
    EXPECT_EQ(repr_of(list), "[]");
    Py_DECREF(list);
    EXPECT_EQ(fn_clbk_ucol_create_fast_longlist(INT64_MAX, &list), nullptr);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(take_error(), "MemoryError: ");
}

TEST_F(PythonCollections, UnicodeBytes) {
    PyObject* keeper = nullptr;
    int count = 0;
    const char16_t* units = nullptr;
    const PyRef text = eval("'a\\u20ac\\U0001F600'");
    ASSERT_EQ(fn_clbk_ucol_get_unicode_bytes(text.get(), &keeper, &count, &units), 1);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(reinterpret_cast<const char*>(units), PyBytes_AS_STRING(keeper) + 4);
    EXPECT_EQ(units[0], u'\u20ac');
    Py_DECREF(keeper);
    ASSERT_EQ(fn_clbk_ucol_get_unicode_bytes(eval("''").get(), &keeper, &count, &units), 1);
    EXPECT_EQ(count, 0);
    Py_DECREF(keeper);
    EXPECT_EQ(status_of(fn_clbk_ucol_get_unicode_bytes(eval("b'x'").get(), &keeper, &count, &units),
                        "TypeError: can't build Char from 'bytes'"),
              0);
    EXPECT_EQ(fn_clbk_ucol_get_unicode_bytes(eval("'\\ud800'").get(), &keeper, &count, &units), 0);
    PyErr_Clear();
}

TEST_F(PythonCollections, ItemsOfAList) {
    const PyRef value = eval("object()");
    {
        const PyRef list = eval("['a', 'b']");
        VariantArg record;
        EXPECT_EQ(fn_clbk_olist_get_item(list.get(), 1, &record), 0);
        EXPECT_EQ(record.payload, PyList_GET_ITEM(list.get(), 1));
        EXPECT_EQ(
            status_of(fn_clbk_olist_get_item(list.get(), 2, &record), "IndexError: list index out of range"),
            -2);
        EXPECT_EQ(fn_clbk_olist_get_item(eval("()").get(), 0, &record), -1);
        PyErr_Clear();
        EXPECT_EQ(fn_clbk_olist_set_item(list.get(), 0, new_ref_to(value)), 0);
        EXPECT_EQ(status_of(fn_clbk_olist_set_item(list.get(), 9, new_ref_to(value)),
                            "IndexError: list assignment index out of range"),
                  -2);
        EXPECT_EQ(fn_clbk_olist_add(list.get(), new_ref_to(value)), 3);
        EXPECT_EQ(fn_clbk_olist_insert(list.get(), -100, new_ref_to(value)), 0);
        EXPECT_EQ(fn_clbk_olist_insert(list.get(), 100, new_ref_to(value)), 0);
        EXPECT_EQ(fn_clbk_olist_add(eval("()").get(), new_ref_to(value)), -1);
        PyErr_Clear();
        EXPECT_EQ(fn_clbk_olist_contains(list.get(), new_ref_to(value)), 1);
        EXPECT_EQ(fn_clbk_olist_index_of(list.get(), new_ref_to(value)), 0);
        EXPECT_EQ(fn_clbk_olist_remove(list.get(), new_ref_to(value)), 0);
        EXPECT_EQ(PyList_GET_SIZE(list.get()), 4);
    }
    EXPECT_EQ(Py_REFCNT(value.get()), 1);
}

TEST_F(PythonCollections, SearchInAList) {
    const PyRef list = eval("[1, 2]");
    EXPECT_EQ(fn_clbk_olist_contains(list.get(), PyLong_FromLong(9)), 0);
    EXPECT_EQ(fn_clbk_olist_index_of(list.get(), PyLong_FromLong(9)), -1);
    EXPECT_EQ(fn_clbk_olist_index_of(list.get(), PyFloat_FromDouble(2.0)), 1);
    EXPECT_EQ(status_of(fn_clbk_olist_remove(list.get(), PyLong_FromLong(9)),
                        "ValueError: list.remove(x): x not in list"),
              -1);
    EXPECT_EQ(
        status_of(fn_clbk_olist_contains(list.get(), eval("Raises()").release()), "KeyError: 'compared'"),
        -1);
    EXPECT_EQ(
        status_of(fn_clbk_olist_index_of(list.get(), eval("Raises()").release()), "KeyError: 'compared'"),
        -2);
    EXPECT_EQ(status_of(fn_clbk_olist_remove(list.get(), eval("Raises()").release()), "KeyError: 'compared'"),
              -1);
    run(R"py(
class Far:
    def __init__(self, at): self.at = at
    def index(self, value): return self.at
)py");
    EXPECT_EQ(fn_clbk_olist_index_of(eval("Far(2**31 - 1)").get(), PyLong_FromLong(9)), 2147483647);
    EXPECT_EQ(status_of(fn_clbk_olist_index_of(eval("Far(2**31)").get(), PyLong_FromLong(9)),
                        "IndexError: index too big to convert to 'Int32'"),
              -2);
    EXPECT_EQ(status_of(fn_clbk_olist_index_of(eval("Far(-2**31 - 1)").get(), PyLong_FromLong(9)),
                        "IndexError: index too small to convert to 'Int32'"),
              -2);
    EXPECT_EQ(status_of(fn_clbk_olist_index_of(eval("Far('x')").get(), PyLong_FromLong(9)),
                        "TypeError: argument should be integer or None, not 'str'"),
              -2);
}

TEST_F(PythonCollections, SequencesThatAreNoLists) {
    VariantArg record;
    const PyRef pair = eval("(1.5, 2)");
    {
        PyObject* item = PyTuple_GET_ITEM(pair.get(), 0);
        const Py_ssize_t before = Py_REFCNT(item);
        EXPECT_EQ(fn_clbk_oseq_get_item(pair.get(), 0, &record), 0);
        EXPECT_EQ(record.kind, 7);
        EXPECT_EQ(Py_REFCNT(item), before + 1) << "the record's reference";
        Py_DECREF(item);
    }
    EXPECT_EQ(
        status_of(fn_clbk_oseq_get_item(pair.get(), 2, &record), "IndexError: tuple index out of range"), -2);
    EXPECT_EQ(status_of(fn_clbk_oseq_get_item(eval("Refuses()").get(), 0, &record), "KeyError: 'no item'"),
              -1);
    EXPECT_EQ(fn_clbk_oseq_contains(pair.get(), PyLong_FromLong(2)), 1);
    EXPECT_EQ(fn_clbk_oseq_contains(pair.get(), PyLong_FromLong(9)), 0);
    EXPECT_EQ(fn_clbk_oseq_index_of(pair.get(), PyLong_FromLong(2)), 1);
    EXPECT_EQ(fn_clbk_oseq_index_of(pair.get(), PyLong_FromLong(9)), -1);
    EXPECT_EQ(fn_clbk_oseq_index_of(eval("()").get(), PyLong_FromLong(9)), -1);
    // A comparison that raises counts as found.
    EXPECT_EQ(
        status_of(fn_clbk_oseq_contains(pair.get(), eval("Raises()").release()), "KeyError: 'compared'"), 1);
    EXPECT_EQ(
        status_of(fn_clbk_oseq_index_of(pair.get(), eval("Raises()").release()), "KeyError: 'compared'"), 0);
    EXPECT_EQ(status_of(fn_clbk_oseq_contains(eval("Refuses()").get(), PyLong_FromLong(9)),
                        "KeyError: 'no length'"),
              0);
    run(R"py(
class Shrinks(Items):
    def __getitem__(self, i):
        self.items.pop()
        return 0
)py");
    EXPECT_EQ(fn_clbk_oseq_contains(eval("Shrinks([0] * 4)").get(), PyLong_FromLong(9)), 0);
    run(R"py(
class Ends(Items):
    def __len__(self): return 3
)py");
    EXPECT_EQ(status_of(fn_clbk_oseq_index_of(eval("Ends([1])").get(), PyLong_FromLong(9)),
                        "IndexError: list index out of range"),
              -2);
}

TEST_F(PythonCollections, WrappersForManagedLists) {
    const PyRef items = eval("[1]");
    struct Row {
        PyObject* (*write)(void*);
        const char* name;
    };
    for (const auto& [write, name] : {Row{fn_clbk_olist_write_clr_ilist, "_IListWrapper"},
                                      Row{fn_clbk_olist_write_clr_arrlist, "_ArrListWrapper"},
                                      Row{fn_clbk_olist_write_clr_array, "_ArrayWrapper"}}) {
        const PyRef wrapper = PyRef::steal(write(fake::new_collection("", items.get())));
        EXPECT_EQ(Py_TYPE(wrapper.get())->tp_name, std::string("velbor.voxlar._wrpgen._interop.") + name);
    }
}

// Typed callbacks.

TEST_F(PythonCollections, TypedReads) {
    double real = 0;
    EXPECT_EQ(fn_clbk_pylist_1BA766B5_get_item(eval("[1.5]").get(), 0, &real), 0);
    EXPECT_EQ(real, 1.5);
    EXPECT_EQ(status_of(fn_clbk_pylist_1BA766B5_get_item(eval("[1.5]").get(), 1, &real),
                        "IndexError: list index out of range"),
              -2);
    EXPECT_EQ(status_of(fn_clbk_pylist_1BA766B5_get_item(eval("[1]").get(), 0, &real),
                        "TypeError: can't build 'Double' from 'int'"),
              -1);
    bool truth = false;
    EXPECT_EQ(fn_clbk_pylist_3AC634AC_get_item(eval("[True]").get(), 0, &truth), 0);
    EXPECT_TRUE(truth);
    std::int16_t small = 0;
    EXPECT_EQ(fn_clbk_pylist_A2718E40_get_item(eval("[-5]").get(), 0, &small), 0);
    EXPECT_EQ(small, -5);

    PyObject* keeper = nullptr;
    PyStringArg text;
    const PyRef words = eval("('one', 'two')");
    EXPECT_EQ(fn_clbk_pyseq_CBE911FC_get_item(words.get(), 1, &keeper, &text), 0);
    EXPECT_EQ(text.length, 3);
    EXPECT_EQ(keeper, PyTuple_GET_ITEM(words.get(), 1));
    Py_DECREF(keeper);
    keeper = nullptr;
    EXPECT_EQ(status_of(fn_clbk_pyseq_CBE911FC_get_item(eval("(5,)").get(), 0, &keeper, &text),
                        "TypeError: can't build String from 'int'"),
              -1);
    EXPECT_EQ(keeper, nullptr);
    EXPECT_EQ(status_of(fn_clbk_pyseq_CBE911FC_get_item(words.get(), 2, &keeper, &text),
                        "IndexError: tuple index out of range"),
              -2);

    run("first, second = node(1), vector(2)");
    const PyRef nodes = eval("iter([first, None, 5])");
    void* handle = &handle;
    EXPECT_EQ(fn_clbk_pyiter_F44BC945_iter_next(nodes.get(), &keeper, &handle), 0);
    EXPECT_EQ(handle, fn_wrapper_handle(keeper));
    Py_DECREF(keeper);
    EXPECT_EQ(fn_clbk_pyiter_F44BC945_iter_next(nodes.get(), &keeper, &handle), 0);
    EXPECT_EQ(handle, nullptr);
    Py_DECREF(keeper);
    EXPECT_EQ(status_of(fn_clbk_pyiter_F44BC945_iter_next(nodes.get(), &keeper, &handle),
                        "TypeError: can't build Node value from 'int'"),
              2);
    EXPECT_EQ(fn_clbk_pyiter_F44BC945_iter_next(nodes.get(), &keeper, &handle), 1);
    VariantArg record{77, 0, nullptr};
    EXPECT_EQ(fn_clbk_pylist_29B75A02_get_item(eval("[second]").get(), 0, &record), 0);
    EXPECT_EQ(record.kind, 1);
    // An array among the elements may be a Python list, too.
    EXPECT_EQ(fn_clbk_pylist_DAF680C1_get_item(eval("[[1, 2]]").get(), 0, &record), 0);
    EXPECT_EQ(record.kind, 2);
}

TEST_F(PythonCollections, TypedWrites) {
    run("first = node(1)\nlist_of_nodes = [None]");
    const PyRef list = eval("list_of_nodes");
    const PyRef first = eval("first");
    auto handle = [&] { return fake::new_handle(fake::object_of(fn_wrapper_handle(first.get()))); };
    EXPECT_EQ(fn_clbk_pylist_F44BC945_add(list.get(), handle()), 2);
    EXPECT_EQ(fn_clbk_pylist_F44BC945_insert(list.get(), 0, handle()), 0);
    EXPECT_EQ(fn_clbk_pylist_F44BC945_set_item(list.get(), 1, handle()), 0);
    EXPECT_EQ(status_of(fn_clbk_pylist_F44BC945_set_item(list.get(), 9, handle()),
                        "IndexError: list assignment index out of range"),
              -2);
    run("assert list_of_nodes == [first] * 3");
    EXPECT_EQ(fn_clbk_pylist_F44BC945_contains(list.get(), handle()), 1);
    EXPECT_EQ(fn_clbk_pylist_F44BC945_index_of(list.get(), handle()), 0);
    EXPECT_EQ(fn_clbk_pylist_F44BC945_remove(list.get(), handle()), 1);
    EXPECT_EQ(fn_clbk_pylist_F44BC945_remove(list.get(), nullptr), 0) << "absent, without an error";
    EXPECT_EQ(take_error(), "");
    EXPECT_EQ(fn_clbk_pylist_F44BC945_add(list.get(), nullptr), 3) << "null is None";
    EXPECT_EQ(fn_clbk_pylist_F44BC945_index_of(list.get(), nullptr), 2);
    run("list_of_nodes.insert(0, Raises())");
    EXPECT_EQ(status_of(fn_clbk_pylist_F44BC945_remove(list.get(), handle()), "KeyError: 'compared'"), -1);
    const PyRef pair = eval("(None, first)");
    EXPECT_EQ(fn_clbk_pyseq_F44BC945_contains(pair.get(), handle()), 1);
    EXPECT_EQ(fn_clbk_pyseq_F44BC945_index_of(pair.get(), handle()), 1);
    EXPECT_EQ(fn_clbk_pyseq_F44BC945_index_of(eval("()").get(), handle()), -1);
    const PyRef arrays = eval("[]");
    EXPECT_EQ(
        fn_clbk_pylist_DAF680C1_add(arrays.get(), fake::new_collection("A4A29720", eval("[1, 2]").get())), 1);
    EXPECT_STREQ(Py_TYPE(PyList_GET_ITEM(arrays.get(), 0))->tp_name,
                 "velbor.voxlar._wrpgen._generic._ArrayWrapper_A4A29720");
}

}  // namespace
