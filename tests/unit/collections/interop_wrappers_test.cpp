#include "collections/fixture.h"

#include "collections/common_wrappers.h"
#include "collections/interop_hosts.h"

#include <vector>

// Types, iteration, disposal, casts and argument converters of the untyped wrappers.

namespace {

using Names = std::vector<std::string>;

template <std::size_t Count>
Names names_of(const char* const (&names)[Count]) {
    return Names(names, names + Count);
}

class InteropWrappers : public Collections {};

TEST_F(InteropWrappers, EntryPointsInBindingOrder) {
    EXPECT_EQ(names_of(kNamesOfDisposable),
              (Names{"btp_IsAssignable", "btp_TypeOf", "btp_CastTo", "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfIter),
              (Names{"MoveNext", "btp_IsAssignable", "btp_TypeOf", "btp_CastTo", "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfIterable),
              (Names{"GetEnumerator", "CreateInstanceFromPyIterable", "btp_IsAssignable", "btp_TypeOf",
                     "btp_CastTo", "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfICol), (Names{"SqLength", "SqContains", "CountOf", "CreateInstanceFromPyList",
                                             "CreateInstanceFromPyIterable", "btp_IsAssignable", "btp_TypeOf",
                                             "btp_CastTo", "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfIList), (Names{"SqGetItem",
                                              "SqGetItemNoCheck",
                                              "SqSetItem",
                                              "SqSetItemNoCheck",
                                              "Add",
                                              "Insert",
                                              "Remove",
                                              "RemoveAt",
                                              "Pop",
                                              "Clear",
                                              "SqInplaceConcat",
                                              "SqInplaceRepeat",
                                              "MpSetItems",
                                              "MpRemoveItems",
                                              "Reverse",
                                              "Sort",
                                              "IndexBy",
                                              "SqContains",
                                              "CountOf",
                                              "CreateInstanceFromPyList",
                                              "CreateInstanceFromPySequence",
                                              "btp_IsAssignable",
                                              "btp_TypeOf",
                                              "btp_CastTo",
                                              "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfArray),
              (Names{"SqLength", "SqContains", "SqGetItem", "SqGetItemNoCheck", "SqSetItem",
                     "SqSetItemNoChek", "MpSetItems", "Reverse", "Sort", "IndexBy", "CountOf",
                     "CreateInstanceFromPyList", "CreateInstanceFromPySequence", "btp_IsAssignable",
                     "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs"}));
    EXPECT_EQ(names_of(kNamesOfArrList), (Names{"SqLength",
                                                "Add",
                                                "Remove",
                                                "Clear",
                                                "SqContains",
                                                "SqGetItem",
                                                "SqGetItemNoCheck",
                                                "SqSetItem",
                                                "SqSetItemNoChek",
                                                "Insert",
                                                "RemoveAt",
                                                "Pop",
                                                "SqInplaceConcat",
                                                "SqInplaceRepeat",
                                                "MpSetItems",
                                                "MpRemoveItems",
                                                "Reverse",
                                                "Sort",
                                                "IndexBy",
                                                "CountOf",
                                                "EnsureCapacity",
                                                "CreateInstanceFromPyList",
                                                "CreateInstanceFromPySequence",
                                                "btp_IsAssignable",
                                                "btp_TypeOf",
                                                "btp_CastTo",
                                                "btp_ReInterpretObj",
                                                "btp_CastAs"}));
    const Names base = {"CreateInstanceFromPyList",
                        "CreateInstanceFromPySequence",
                        "btp_IsAssignable",
                        "btp_TypeOf",
                        "btp_CastTo",
                        "btp_ReInterpretObj",
                        "btp_CastAs"};
    EXPECT_EQ(names_of(kNamesOfColBase), base);
    EXPECT_EQ(names_of(kNamesOfRoColBase), base);
}

TEST_F(InteropWrappers, TheModuleAndItsTypes) {
    run(R"py(
assert interop.__name__ == 'velbor.voxlar._wrpgen._interop'
names = [n for n in vars(interop) if not n.startswith('__')]
assert names == ['_IDisposableWrapper', '_IterWrapper', '_IterableWrapper', '_IColWrapper', '_IListWrapper',
                 '_RoColBaseWrapper', '_ColBaseWrapper', '_ArrayWrapper', '_ArrListWrapper', '_ShlBufferView',
                 '_StreamWrapper'], names
tail = ['get_type', '_type_of', '_cast_to', '_cast_from', '_is_assignable', '_reinterpret_obj', '_cast_as']
listed = ['append', 'insert', 'extend', 'remove', 'pop', 'clear', 'index', 'count', 'contains', 'sort',
          'reverse', 'copy']
own = {
    '_IDisposableWrapper': ['__enter__', '__exit__'], '_IterWrapper': [], '_IterableWrapper': [],
    '_IColWrapper': ['count', 'copy', 'contains'], '_IListWrapper': listed,
    '_RoColBaseWrapper': ['count', 'copy', 'contains'], '_ColBaseWrapper': listed,
    '_ArrayWrapper': ['index', 'count', 'sort', 'reverse', 'copy', 'contains'],
    '_ArrListWrapper': ['extend', 'append', 'insert', 'remove', 'pop', 'clear', 'index', 'count', 'sort',
                        'reverse', 'copy', 'contains'],
}
Method = (type(str.upper), type(vars(str)['maketrans']))
for name, methods in own.items():
    t = getattr(interop, name)
    rows = [n for n, v in vars(t).items() if isinstance(v, Method)]
    assert rows == methods + tail, (name, rows)
    assert t.__basicsize__ == 24 and t.__base__ is object and t.__module__ == interop.__name__
    assert t.__name__ == name and t.__doc__ is None
    raises(TypeError, 'type has no available constructor', t)
    raises(TypeError, None, type, 'Sub', (t,), {})
    assert vars(t)['_velbor_clr_host'] is None and vars(t)['_velbor_clr_castable_obj'] is None
    assert object.__repr__(t.__new__(t)) == repr(t.__new__(t))
sets = {
    '_IColWrapper': {'_IterableWrapper'},
    '_IListWrapper': {'_IterableWrapper', '_IColWrapper'},
    '_RoColBaseWrapper': {'_IterableWrapper', '_IColWrapper'},
    '_ColBaseWrapper': {'_IterableWrapper', '_IColWrapper', '_IListWrapper'},
    '_ArrayWrapper': {'_IterableWrapper', '_IColWrapper', '_IListWrapper'},
    '_ArrListWrapper': {'_IterableWrapper', '_IColWrapper', '_IListWrapper'},
    '_StreamWrapper': {'_IDisposableWrapper'},
}
for name in names:
    for key in ('_additional_interfaces', '_implicit_interfaces'):
        found = vars(getattr(interop, name)).get(key)
        assert (found is None and name not in sets) or {t.__name__ for t in found} == sets[name], name
assert not any(n.startswith('_velbor') for n in vars(interop._ShlBufferView))
)py");
}

TEST_F(InteropWrappers, TheModulesCanBeBuiltAgain) {
    const PyRef second = PyRef::steal(PyModule_New("velbor.voxlar"));
    ASSERT_NE(wrpPye_mlit_FFFFFFFF_common_wrappers(second.get()), nullptr);
    set_name("second", second.get());
    run("assert second._wrpgen.__name__ == 'velbor.voxlar._wrpgen' and second._wrpgen is not root._wrpgen");
    run("assert second._wrpgen._generic._IterWrapper_F44BC945 is generic._IterWrapper_F44BC945");
    run("del second");
}

TEST_F(InteropWrappers, AParentThatRefusesIsReported) {
    const PyRef no_module = eval("5");
    EXPECT_EQ(wrpPye_mlit_FFFFFFFF_common_wrappers(no_module.get()), nullptr);
    EXPECT_EQ(take_error(),
              "ImportError: Module initialization internal error (-1002) "
              "<velbor.voxlar,velbor.voxlar._wrpgen>");
}

TEST_F(InteropWrappers, IterationCrossesOnceAnElement) {
    run(R"py(
x = make(interop._IterableWrapper, [1, 2])
calls()
it = iter(x)
assert type(it) is interop._IterWrapper and iter(it) is it and calls() == ['GetEnumerator()']
assert next(it) == 1 and calls() == ['MoveNext()']
assert next(it) == 2
raises(StopIteration, '', next, it)
raises(StopIteration, '', next, it)
assert [*make(interop._IterableWrapper, [])] == []
it = iter(x)
fail('MoveNext')
raises(RuntimeError, 'managed failure', next, it)
fail('GetEnumerator')
raises(RuntimeError, 'managed failure', iter, x)
assert not hasattr(it, '__enter__')
)py");
}

TEST_F(InteropWrappers, WithStatement) {
    run(R"py(
d = make(interop._IDisposableWrapper, [])
calls()
with d as x:
    assert x is d and calls() == []
assert calls() == ['Dispose()']
for arguments in ((), (1, 2, 3), (None,) * 7):
    assert d.__exit__(*arguments) is None
raises(TypeError, None, d.__enter__, 1)
def inside():
    with d: raise KeyError('inside')
raises(KeyError, "'inside'", inside)
fail('Dispose')
raises(RuntimeError, 'managed failure', d.__exit__)
)py");
}

TEST_F(InteropWrappers, Casts) {
    run(R"py(
interfaces = [interop._IDisposableWrapper, interop._IterWrapper, interop._IterableWrapper,
              interop._IColWrapper, interop._IListWrapper]
classes = [interop._ArrayWrapper, interop._ArrListWrapper, interop._ColBaseWrapper, interop._RoColBaseWrapper]
for t in interfaces + classes:
    x = make(interop._IListWrapper, [1])
    status, y = t._cast_to(x)
    assert status == 1 and type(y) is t and y == x and y is not x
    status, y = t._cast_as(x)
    assert status == 1 and type(y) is t
    calls()
    assert t._cast_as(None) == (1, None) == t._cast_to(None)
    assert calls() == ['btp_CastAs(null)', 'btp_CastTo(null)']
    assert t._cast_to(5) == (0, None) == t._cast_as(5) == x._cast_from(5)
    assert calls() == []
    assert t._is_assignable(x) is True and t._is_assignable(None) is False and t._is_assignable(5) is False
    setting('cast_status', 0)
    assert type(t._type_of()).__name__ == 'Node' and type(x.get_type()).__name__ == 'Node'
    setting('cast_status', 1)
    fail('btp_CastTo')
    raises(RuntimeError, 'managed failure', t._cast_to, x)
for t in interfaces:
    raises(TypeError, f"cannot convert from  'int' to 'velbor.voxlar._wrpgen._interop.{t.__name__}'",
           t._reinterpret_obj, 5)
for t in classes:
    y = t._reinterpret_obj(node(5))
    assert type(y) is t
    raises(TypeError, '_reinterpret_obj() expects a .Net Object argument, got a int object',
           t._reinterpret_obj, 5)
)py");
}

TEST_F(InteropWrappers, InterfaceArguments) {
    run(R"py(
names = {'iter': ('_IterWrapper', 'IEnumerator'), 'iterable': ('_IterableWrapper', 'IEnumerable'),
         'idisposable': ('_IDisposableWrapper', 'IDisposable'), 'icollection': ('_IColWrapper', 'List'),
         'ilist': ('_IListWrapper', 'List')}
listing = {'_IterableWrapper': ['_IColWrapper', '_IListWrapper', '_ColBaseWrapper', '_ArrayWrapper',
                                '_ArrListWrapper', '_RoColBaseWrapper'],
           '_IColWrapper': ['_IListWrapper', '_ColBaseWrapper', '_RoColBaseWrapper', '_ArrayWrapper'],
           '_IListWrapper': ['_ColBaseWrapper', '_ArrayWrapper', '_ArrListWrapper']}
for name, (own, text) in names.items():
    calls()
    assert convert(name, None) == (0, 'null')
    assert convert(name, make(getattr(interop, own), [])) == (0, 'handle')
    for other in listing.get(own, []):
        assert convert(name, make(getattr(interop, other), [])) == (0, 'handle')
    assert calls() == []
    # Any other wrapper is the managed side's to judge.
    assert convert(name, node(1)) == (0, 'handle') and calls() == ['btp_IsAssignable()']
    assert convert(name, vector(1)) == (1, 'handle') and calls() == ['btp_IsAssignable()']
    setting('assignable', 0)
    raises(TypeError, f"can't build {text} value from 'fake.Node'", convert, name, node(1))
    # A list refused there is not tried as a Python object.
    raises(TypeError, f"can't build {text} value from 'fake.Vector4'", convert, name, vector(1))
    setting('assignable', 1)
    raises(TypeError, f"can't build {text} value from 'int'", convert, name, 5)

class Items:
    def __getitem__(self, i): raise IndexError
class Sized(Items):
    def __len__(self): return 0
class OwnList(list): pass
def refused(name, *objects):
    for o in objects:
        text = f"can't build {names[name][1]} value from '{type(o).__name__}'"
        raises(TypeError, text, convert, name, o)
def taken(name, kind, *objects):
    for o in objects: assert convert(name, o) == (kind, 'object'), (name, o)
taken('iter', 2, iter(range(3)), (i for i in ()))
refused('iter', range(3), [], 'text', Items())
taken('iterable', 2, range(3), iter([]), [], (), {}, 'text', Items(), (i for i in ()))
refused('iterable', 5, object())
refused('idisposable', [], object())
taken('icollection', 2, [], (), {}, {1}, 'text', range(3), Sized())
refused('icollection', (i for i in ()), Items(), object())
taken('ilist', 2, [], OwnList())
taken('ilist', 3, (), 'text', range(3), Sized())
refused('ilist', {}, {1}, (i for i in ()))
)py");
}

TEST_F(InteropWrappers, ClassArguments) {
    run(R"py(
names = {'array': ('_ArrayWrapper', 'Array'), 'arrlist': ('_ArrListWrapper', 'ArrayList'),
         'colbase': ('_ColBaseWrapper', 'CollectionBase'),
         'rocolbase': ('_RoColBaseWrapper', 'ReadOnlyCollectionBase')}
class OwnList(list): pass
for name, (own, text) in names.items():
    calls()
    assert convert(name, None) == (0, 'null')
    assert convert(name, make(getattr(interop, own), [])) == (0, 'handle')
    assert calls() == []
    assert convert(name, node(1)) == (0, 'handle') and calls() == ['btp_IsAssignable()']
    setting('assignable', 0)
    raises(TypeError, f"can't build {text} value from 'fake.Node'", convert, name, node(1))
    setting('assignable', 1)
    calls()
    # The wrapper of a struct is no reference, and no list either.
    raises(TypeError, f"can't build {text} value from 'fake.Vector4'", convert, name, vector(1))
    assert calls() == []
    assert convert(name, []) == convert(name, OwnList()) == (2, 'object')
    assert convert(name, ()) == convert(name, 'text') == (3, 'object')
    raises(TypeError, f"can't build {text} value from 'set'", convert, name, set())
    raises(TypeError, f"can't build {text} value from 'dict'", convert, name, {})
# A typed array is an array, by its base.
assert convert('array', make(generic._ArrayWrapper_1BA766B5, [])) == (0, 'handle') and calls() == []
assert isinstance(make(generic._ArrayWrapper_1BA766B5, []), interop._ArrayWrapper)
)py");
}

}  // namespace
