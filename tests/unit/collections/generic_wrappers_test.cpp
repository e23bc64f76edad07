#include "collections/fixture.h"

#include "generics_elements.h"

#include <vector>

// The typed wrappers: their module, what differs from the untyped ones, and how each element form crosses.

// Element types of these tests alone: their hosts are bound here and nowhere else.
struct Generic_Missing {
    using Element = DoubleElement;
    static constexpr FixedText kTag{"00000001"};
};
struct Generic_A {
    using Element = DoubleElement;
    static constexpr FixedText kTag{"0000000A"};
};
struct Generic_B {
    using Element = DoubleElement;
    static constexpr FixedText kTag{"0000000B"};
};
struct Generic_C {
    using Element = Generic_F44BC945::Element;
    static constexpr FixedText kTag{"0000000C"};
};
extern PyTypeObject test_type;
extern PyTypeObject test_collection;
PyTypeObject test_type{};
using LateCollection = GenericICol<Generic_C, test_collection, wrpPygn_tyds_F44BC945_IterWrapper>;
PyTypeObject test_collection = LateCollection::make_type();

namespace {

using Names = std::vector<std::string>;

template <std::size_t Count>
Names names_of(const char* const (&names)[Count]) {
    return Names(names, names + Count);
}

class GenericWrappers : public Collections {};

TEST_F(GenericWrappers, EntryPointsInBindingOrder) {
    EXPECT_EQ(names_of(kGenericNamesOfIter),
              (Names{"MoveNext", "btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"}));
    EXPECT_EQ(names_of(kGenericNamesOfIterable), (Names{"GetEnumerator"}));
    EXPECT_EQ(names_of(kGenericNamesOfICol), (Names{"SqLength", "Add", "Remove", "Clear", "SqInplaceConcat",
                                                    "SqInplaceRepeat", "SqContains", "CountOf"}));
    EXPECT_EQ(
        names_of(kGenericNamesOfIList),
        (Names{"SqGetItem", "SqGetItemNoCheck", "SqSetItem", "SqSetItemNoChek", "Insert", "RemoveAt", "Pop",
               "SqInplaceConcat", "SqInplaceRepeat", "MpSetItems", "MpRemoveItems", "Reverse", "Sort",
               "IndexBy", "CountOf", "btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"}));
    EXPECT_EQ(names_of(kGenericNamesOfList), (Names{"SqLength",         "Add",
                                                    "Remove",           "Clear",
                                                    "SqContains",       "SqGetItem",
                                                    "SqGetItemNoCheck", "SqSetItem",
                                                    "SqSetItemNoChek",  "Insert",
                                                    "RemoveAt",         "Pop",
                                                    "SqInplaceConcat",  "SqInplaceRepeat",
                                                    "MpSetItems",       "MpRemoveItems",
                                                    "Reverse",          "Sort",
                                                    "IndexBy",          "CountOf",
                                                    "EnsureCapacity",   "btp_TypeOf",
                                                    "btp_CastTo",       "btp_ReInterpretObj",
                                                    "btp_CastAs",       "btp_IsAssignable"}));
    EXPECT_EQ(names_of(kGenericNamesOfArray),
              (Names{"SqLength", "SqContains", "SqGetItem", "SqGetItemNoCheck", "SqSetItem",
                     "SqSetItemNoChek", "MpSetItems", "Reverse", "Sort", "IndexBy", "CountOf", "btp_TypeOf",
                     "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs", "btp_IsAssignable"}));
    EXPECT_STREQ(PyHost_gn_List<Generic_F44BC945>::kManagedClass, "Velbor.WrpGen.Generic.SiApiList_F44BC945");
    EXPECT_STREQ(PyHost_gn_ICol<Generic_FD7D0633>::kManagedClass,
                 "Velbor.WrpGen.Generic.SiApiCntCollection_FD7D0633");
}

TEST_F(GenericWrappers, TheModuleAndItsTypes) {
    run(R"py(
assert generic.__name__ == 'velbor.voxlar._wrpgen._generic'
types = [t for n, t in vars(generic).items() if not n.startswith('__')]
kinds = [t.__name__.split('Wrapper_')[0][1:] for t in types]
assert len(types) == 82
assert kinds == ['Array'] * 10 + ['IList'] * 25 + ['ICol'] * 2 + ['Iter'] * 39 + ['List'] * 6
assert [t.__name__ for t in types[:4]] == ['_ArrayWrapper_1BA766B5', '_ArrayWrapper_A4A29720',
                                           '_ArrayWrapper_57AC8DC4', '_ArrayWrapper_CBE911FC']
tail = ['get_type', '_type_of', '_cast_to', '_cast_from', '_reinterpret_obj', '_cast_as', '_is_assignable']
own = {
    'Array': ['index', 'count', 'sort', 'reverse', 'copy', 'contains'],
    'IList': ['extend', 'insert', 'pop', 'index', 'count', 'sort', 'reverse', 'copy', 'append', 'remove',
              'clear', 'contains'],
    'ICol': ['append', 'remove', 'clear', 'extend', 'contains', 'count', 'copy'],
    'Iter': ['__enter__', '__exit__'],
    'List': ['extend', 'append', 'insert', 'remove', 'pop', 'clear', 'index', 'count', 'sort', 'reverse',
             'copy', 'contains'],
}
Method = (type(str.upper), type(vars(str)['maketrans']))
interfaces = (interop._IterableWrapper, interop._IColWrapper, interop._IListWrapper)
for t, kind in zip(types, kinds):
    rows = [n for n, v in vars(t).items() if isinstance(v, Method)]
    assert rows == own[kind] + tail, (t, rows)
    assert t.__module__ == generic.__name__ and t.__basicsize__ == 24 and t.__doc__ is None
    assert t.__base__ is (interop._ArrayWrapper if kind == 'Array' else object)
    assert vars(t)['_velbor_clr_host'] is None and vars(t)['_velbor_clr_castable_obj'] is None
    listed = set()
    if kind == 'IList': listed = {interop._IterableWrapper}
    if kind in ('Array', 'List'):
        listed = {*interfaces}
        typed = getattr(generic, f'_IListWrapper_{t.__name__[-8:]}', None)
        if typed: listed.add(typed)
    for key in ('_additional_interfaces', '_implicit_interfaces'):
        assert vars(t).get(key, set()) == listed and (key in vars(t)) == bool(listed), (t, vars(t).get(key))
made = [t for t in types if t.__name__[-8:] in ('1BA766B5', 'F44BC945', 'CBE911FC', 'FD7D0633')]
assert len(made) == 3 + 3 + 4 + 2
for t in made: raises(TypeError, 'type has no available constructor', t)
)py");
}

TEST_F(GenericWrappers, HostsOfAList) {
    run(R"py(
x = make(generic._IListWrapper_F44BC945, [node(1)])
bound()
length = len(x)
# The length of a typed list is the collection host's to tell.
x.append(node(2)); x.remove(x[0]); x.contains(x[0]); x.clear()
assert {c.split('.')[3] for c in bound()} <= {'SiApiCntCollection_F44BC945', 'SiApiCntList_F44BC945',
                                              'SiApiEnumerable_F44BC945'}
)py");
}

TEST_F(GenericWrappers, ElementsOfEachForm) {
    run(R"py(
def same(wrapper, items): assert [*wrapper] == wrapper[:] == [wrapper[i] for i in range(len(items))] == items
d = make(generic._ArrayWrapper_1BA766B5, [0.5, 1.5])
d[0] = 2.25
same(d, [2.25, 1.5])
raises(TypeError, "can't build 'Double' from 'int'", set_item, d, 0, 1)
raises(TypeError, "can't build 'Double' from 'int'", lambda: 1 in d)
raises(TypeError, "can't build 'Double' from 'str'", d.count, 'x')
raises(TypeError, "can't build 'Double' from 'int'", set_item, d, slice(2), (1, 2))
raises(ValueError, 'elements removing not supported', del_item, d, 0)
i = make(generic._IListWrapper_A4A29720, [1, 2])
i.extend([3, -4])
same(i, [1, 2, 3, -4])
raises(TypeError, "can't build 'Int32' from 'bool'", i.append, True)
u = make(generic._ArrayWrapper_57AC8DC4, [1, 65535])
same(u, [1, 65535])
raises(OverflowError, "value too big to convert to 'UInt16'", set_item, u, 0, 65536)
s = make(generic._ListWrapper_CBE911FC, ['a'])
s += ['', None, '\u20ac\U0001F600']
same(s, ['a', '', None, '\u20ac\U0001F600'])
raises(TypeError, "can't build String from 'int'", s.index, 1)
b = make(generic._ListWrapper_8A028265, [])
b.append(b'one'); b.append(bytearray(b'two')); b.append(memoryview(b'three'))
same(b, [b'one', b'two', b'three'])
assert type(b[0]) is bytearray and b.index(b'two') == 1 and b'three' in b
raises(TypeError, "can't build byte[] from 'str'", b.append, 'x')
o = make(generic._ListWrapper_F372CE9B, [1, 'a'])
o.append(None)
same(o, [1, 'a', None])
a = make(generic._ListWrapper_CBE911FC, ['x'])
raises(TypeError, "can't build List value from 'set'", convert, 'list_CBE911FC', {1})
n = make(generic._ListWrapper_F44BC945, [node(1)])
first, second = n[0], node(2)
assert type(first).__name__ == 'Node'
n.append(second)
n.insert(0, None)
assert n[0] is None and n.index(second) == 2 and second in n and n.count(first) == 1
same(n, [None, first, second])
raises(TypeError, "can't build Node value from 'int'", lambda: 5 in n)
raises(TypeError, "can't build Node value from 'int'", n.count, 5)
raises(TypeError, "can't build Node value from 'int'", n.index, 5, 'x')
assert n.pop() == second and n.pop(None) is None and len(n) == 1
v = make(generic._IListWrapper_29B75A02, [vector(1), vector(2)])
assert type(v[0]).__name__ == 'Vector4' and v[0] != v[1] and v[1] in v
v.append(v[0])
raises(TypeError, "can't build Vector4 value from 'NoneType'", v.append, None)
same(v, [v[0], v[1], v[0]])
t = make(generic._IListWrapper_18BDDF85, [unit(1), None])
assert type(t[0]).__name__ == 'ITextureUnit' and t[1] is None and t[:] == [*t] and t.pop() is None
t.append(unit(3))
assert len(t * 2) == 4
j = make(generic._IListWrapper_DAF680C1, [make(generic._ArrayWrapper_A4A29720, [1, 2])])
assert type(j[0]) is generic._ArrayWrapper_A4A29720 and [*j[0]] == [1, 2] and j[0] in j
j.append(make(generic._ArrayWrapper_A4A29720, []))
assert [len(k) for k in j] == [2, 0]
raises(TypeError, "can't build Array value from 'set'", j.append, {1})
)py");
}

TEST_F(GenericWrappers, EnumeratorsAreDisposable) {
    run(R"py(
for x, items in [(make(generic._IListWrapper_1BA766B5, [1.0, 2.0]), [1.0, 2.0]),
                 (make(generic._ListWrapper_CBE911FC, ['a']), ['a']),
                 (make(generic._IListWrapper_F44BC945, []), [])]:
    it = iter(x)
    assert type(it).__name__ == '_IterWrapper_' + type(x).__name__[-8:]
    calls()
    with it as y:
        assert y is it and [*y] == items
    assert calls()[-1] == 'Dispose()'
    raises(StopIteration, '', next, it)
)py");
}

TEST_F(GenericWrappers, AMutableCollection) {
    run(R"py(
x = make(generic._IColWrapper_FD7D0633, [])
Pose = type(node(1))
assert len(x) == 0 == x.length and [*x] == [] == x.copy() == x * 3 == x + ()
raises(TypeError, "can't build Pose value from 'int'", x.append, 5)
x.append(None); x.extend([None, None]); x.extend(iter([None])); x += (None,)
assert len(x) == 5 and None in x and x.count(None) == 5 and x.copy() == [None] * 5 == x * 1
x *= 2
calls()
x += x
assert calls() == ['SqInplaceConcat(0)'] and len(x) == 20
x.remove(None)
x.clear()
raises(ValueError, 'list.remove(x): x not in list', x.remove, None)
assert not hasattr(x, 'pop')
raises(TypeError, None, get_item, x, 0)
setting('length_error', 1)
raises(ValueError, 'argument must be iterable or sequence', add, x, [])
)py");
}

TEST_F(GenericWrappers, ToldDifferencesOfAConcreteList) {
    run(R"py(
x = make(generic._ListWrapper_CBE911FC, list('abcdefgh'))
calls()
del x[1:3]
assert calls() == ['SqLength()', 'MpRemoveItems(1,2,-1)']
del x[1:6:2]
assert calls() == ['SqLength()', 'MpRemoveItems(5,3,-2)']
assert x[:] == ['a', 'e', 'g']
calls()
x.extend(['z'])
assert calls() == ['EnsureCapacity(1)', 'Add()']
y = make(generic._IListWrapper_CBE911FC, list('abc'))
calls()
del y[0:2]
assert calls() == ['SqLength()', 'MpRemoveItems(1,2,-1)']
y.extend(['z'])
assert calls() == ['Add()']
)py");
}

TEST_F(GenericWrappers, Casts) {
    run(R"py(
by_record = [generic._IterWrapper_F44BC945, generic._IListWrapper_F44BC945, generic._IColWrapper_FD7D0633]
by_handle = [generic._ListWrapper_F44BC945, generic._ArrayWrapper_1BA766B5]
x = make(generic._ListWrapper_F44BC945, [])
for t in by_record + by_handle:
    assert t._cast_to(x)[0] == 1 and type(t._cast_to(x)[1]) is t is type(t._cast_as(x)[1])
    calls()
    assert t._cast_to(None) == (1, None) and calls() == ['btp_CastTo(null)']
    assert t._cast_as(None) == (0, None) == t._cast_as(5) and calls() == []
    assert t._is_assignable(x) is True and t._is_assignable(None) is False
    assert x._cast_from(5) == (0, None) and type(t._type_of()).__name__ == 'Node'
for t in by_record:
    assert t._cast_as(vector(1))[0] == 1
    raises(TypeError, f"cannot convert from  'fake.Node' to 'velbor.voxlar._wrpgen._generic.{t.__name__}'",
           t._reinterpret_obj, node(1))
for t in by_handle:
    assert t._cast_as(vector(1)) == (0, None) and t._is_assignable(vector(1)) is False
    assert type(t._reinterpret_obj(node(1))) is t
)py");
}

TEST_F(GenericWrappers, ArgumentConverters) {
    run(R"py(
calls()
arrays = {'array_1BA766B5': generic._ArrayWrapper_1BA766B5, 'array_A4A29720': generic._ArrayWrapper_A4A29720}
for name, own in arrays.items():
    assert convert(name, None) == (0, 'null')
    assert convert(name, make(own, [])) == (0, 'handle') and calls() == []
    assert convert(name, []) == (2, 'object') and convert(name, (1,)) == (3, 'object')
    raises(TypeError, "can't build Array value from 'set'", convert, name, {1})
    setting('assignable', 0)
    raises(TypeError, "can't build Array value from 'fake.Node'", convert, name, node(1))
    setting('assignable', 1)
    calls()
lists = {'ilist_F44BC945': 'F44BC945', 'ilist_29B75A02': '29B75A02'}
for name, tag in lists.items():
    assert convert(name, None) == (0, 'null')
    for kind in ('_IListWrapper_', '_ListWrapper_', '_ArrayWrapper_'):
        if hasattr(generic, kind + tag):
            assert convert(name, make(getattr(generic, kind + tag), [])) == (0, 'handle')
    assert calls() == []
    assert convert(name, []) == (2, 'object') and convert(name, ()) == (3, 'object')
    setting('assignable', 0)
    raises(TypeError, "can't build IList value from 'fake.Node'", convert, name, node(1))
    raises(TypeError, "can't build IList value from 'set'", convert, name, set())
    setting('assignable', 1)
    calls()
assert convert('list_CBE911FC', make(generic._ListWrapper_CBE911FC, [])) == (0, 'handle') and calls() == []
assert convert('list_CBE911FC', make(generic._IListWrapper_CBE911FC, [])) == (0, 'handle')
assert calls() == ['btp_IsAssignable()']
raises(TypeError, "can't build List value from 'int'", convert, 'list_CBE911FC', 5)

x = make(generic._ListWrapper_CBE911FC, [])
calls()
for name in ('iterable', 'icollection', 'ilist'): assert convert(name, x) == (0, 'handle') and calls() == []
assert convert('iter', iter(x)) == (0, 'handle') and calls()[-1] == 'btp_IsAssignable()'

# Nothing can be asked about a wrapper where an enumerable of one element type is declared.
y = make(generic._ArrayWrapper_361B67C0, [])
calls()
assert convert('iterable_361B67C0', y) == (0, 'handle')
text = "can't build IEnumerable value from '%s'"
raises(TypeError, text % 'fake.Node', convert, 'iterable_361B67C0', node(1))
other = text % 'velbor.voxlar._wrpgen._generic._ArrayWrapper_361B67C0'
raises(TypeError, other, convert, 'iterable_9F9569E6', y)
raises(TypeError, text % 'int', convert, 'iterable_9F9569E6', 5)
assert convert('iterable_9F9569E6', None) == (0, 'null')
assert convert('iterable_9F9569E6', iter([])) == convert('iterable_9F9569E6', ()) == (2, 'object')
assert calls() == []

# Arrays of an element type without a wrapper.
name = 'array_3AC634AC'
assert convert(name, None) == (0, 'null') and convert(name, [True]) == (2, 'object')
assert convert(name, (True,)) == (3, 'object') and calls() == []
assert convert(name, node(1)) == (0, 'handle') and calls() == ['btp_IsAssignable()']
raises(TypeError, "can't build Array value from 'set'", convert, name, {True})
# This one is not offered by the managed side at all, which shows when it is needed.
error = raises(TypeError, None, convert, 'array_110A8374', node(1))
assert str(error) == ("While initializing the host for the 'Velbor.WrpGen.Generic.SiApiArray_110A8374 "
    "(Assembly=WrpInterop.Velbor.Voxlar)' type, an error occurred - Method 'SqLength' not found "
    '(error=-2146233069)')
assert convert('array_110A8374', [1]) == (2, 'object')
)py");
}

TEST_F(GenericWrappers, AMissingEntryPointMakesTheTypeUnusable) {
    using Iter = GenericIter<Generic_Missing, test_type>;
    for (int i = 0; i < 2; ++i) {
        fake::state().bound.clear();
        EXPECT_TRUE(Iter::invalidate());
        EXPECT_EQ(
            take_error(),
            "TypeError: While initializing the host for the 'Velbor.WrpGen.Generic.SiApiEnumerator_00000001 "
            "(Assembly=WrpInterop.Velbor.Voxlar)' type, an error occurred - Method 'MoveNext' not found "
            "(error=-2146233069)");
        // It is not looked for again.
        EXPECT_EQ(fake::state().bound.size(), i == 0 ? 1U : 0U);
    }
}

TEST_F(GenericWrappers, AMissingReferenceIsChained) {
    fake::state().missing["Velbor.WrpGen.Generic.SiApiEnumerable_0000000A.GetEnumerator"] = -5;
    using List = GenericList<Generic_A, test_type, test_type>;
    EXPECT_TRUE(List::invalidate());
    const PyRef error = PyRef::steal(fn_take_pending_error());
    EXPECT_EQ(text_of(error.get()), "one or more refereced type is not initialized");
    const PyRef cause = PyRef::steal(PyException_GetCause(error.get()));
    EXPECT_EQ(
        text_of(cause.get()),
        "While initializing the host for the 'Velbor.WrpGen.Generic.SiApiEnumerable_0000000A "
        "(Assembly=WrpInterop.Velbor.Voxlar)' type, an error occurred - Method 'GetEnumerator' not found "
        "(error=-5)");
}

TEST_F(GenericWrappers, HostsAreAskedInOrder) {
    fake::state().bound.clear();
    using IList = GenericIList<Generic_B, test_type, test_type>;
    EXPECT_FALSE(IList::invalidate());
    Names classes;
    for (const std::string& name : fake::state().bound) {
        const std::string type = name.substr(0, name.rfind('.'));
        if (classes.empty() || classes.back() != type) {
            classes.push_back(type);
        }
    }
    EXPECT_EQ(classes, (Names{"Velbor.WrpGen.Generic.SiApiCntList_0000000B",
                              "Velbor.WrpGen.Generic.SiApiCntCollection_0000000B",
                              "Velbor.WrpGen.Generic.SiApiEnumerable_0000000B"}));
}

TEST_F(GenericWrappers, CastsOfACollectionAreLookedUpLate) {
    ASSERT_EQ(PyType_Ready(&test_collection), 0);
    ASSERT_TRUE(fn_set_obj_type_host_markattr(&test_collection));
    const std::string type = "Velbor.WrpGen.Generic.SiApiCntCollection_0000000C.";
    for (const char* name : {"btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"}) {
        fake::state().missing[type + name] = -7;
    }
    set_name("collection", reinterpret_cast<PyObject*>(&test_collection));
    run(R"py(
text = ("While initializing the host for the 'Velbor.WrpGen.Generic.SiApiCntCollection_0000000C "
        "(Assembly=WrpInterop.Velbor.Voxlar)' type, an error occurred - Method '%s' not found (error=-7)")
bound()
x = make(collection, [])
assert len(x) == 0 and not any('btp_' in name for name in bound())
for _ in range(2):
    raises(TypeError, text % 'btp_TypeOf', collection._type_of)
    raises(TypeError, text % 'btp_CastTo', collection._cast_to, x)
    raises(TypeError, text % 'btp_CastAs', collection._cast_as, x)
    raises(TypeError, text % 'btp_IsAssignable', collection._is_assignable, x)
assert collection._is_assignable(5) is False and collection._cast_as(None) == (0, None)
assert sum('btp_' in name for name in bound()) == 4
)py");
}

}  // namespace
