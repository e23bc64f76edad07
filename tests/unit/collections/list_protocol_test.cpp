#include "collections/fixture.h"

// The list protocol of the untyped wrappers, against what a managed list answers.

namespace {

/// Every wrapper with element access.
constexpr char kForEachKind[] = R"py(
kinds = [interop._IListWrapper, interop._ArrListWrapper, interop._ColBaseWrapper, interop._ArrayWrapper]
growing = kinds[:3]
)py";

class ListProtocol : public Collections {
protected:
    void SetUp() override {
        Collections::SetUp();
        run(kForEachKind);
    }
};

TEST_F(ListProtocol, ItemsAndSlicesReadAsOfAList) {
    run(R"py(
for kind in kinds:
    x = make(kind, [10, 11, 12, 13, 14])
    assert len(x) == x.length == 5
    assert x[0] == 10 and x[-1] == 14 and x[True] == 11
    assert [*x] == [10, 11, 12, 13, 14] == x[:]
    assert x[::2] == [10, 12, 14] and type(x[::2]) is list
    assert x[3:1] == [] and x[5:2] == [] and x[::-2] == [14, 12, 10]
    assert x[0:1:2**62] == [10] and x[1:100] == [11, 12, 13, 14]
    calls()
    x[1:4:2]
    assert calls() == ['SqLength()', 'SqGetItemNoCheck(1)', 'SqGetItemNoCheck(3)']
    x[-2]
    assert calls() == ['SqLength()', 'SqGetItem(3)']
)py");
}

TEST_F(ListProtocol, BadIndices) {
    run(R"py(
for kind in kinds:
    x = make(kind, [])
    calls()
    raises(IndexError, 'list index out of range', get_item, x, -1)
    assert calls() == ['SqLength()', 'SqGetItem(-1)']
    raises(IndexError, 'list index out of range', get_item, x, 0)
    raises(IndexError, "cannot fit 'int' into an index-sized integer", get_item, x, 2**70)
    raises(TypeError, 'list indices must be integers or slices, not str', get_item, x, 'x')
    raises(TypeError, 'list indices must be integers or slices, not float', set_item, x, 1.0, 1)
    raises(IndexError, 'list index out of range', set_item, x, 3, 1)
    raises(ValueError, 'slice step cannot be zero', get_item, x, slice(0, 1, 0))
    calls()
    # The low half of a 64-bit index is what crosses.
    raises(IndexError, 'list index out of range', get_item, x, 2**32 + 7)
    assert calls() == ['SqLength()', 'SqGetItem(7)']
    class Index:
        def __index__(self): return 1
    y = make(kind, [1, 2])
    assert y[Index()] == 2
)py");
}

TEST_F(ListProtocol, AFailingManagedCallEndsTheOperation) {
    run(R"py(
for kind in kinds:
    x = make(kind, [1, 2, 3])
    for name, after, action in [
        ('SqLength', 0, lambda: x[0]), ('SqLength', 0, lambda: x[0:1]), ('SqLength', 0, lambda: len(x)),
        ('SqLength', 0, lambda: x.length), ('SqLength', 0, lambda: x + [1]), ('SqLength', 0, lambda: x * 2),
        ('SqLength', 0, lambda: x.copy()), ('SqLength', 0, lambda: set_item(x, 0, 1)),
        ('SqGetItem', 0, lambda: x[0]), ('SqGetItemNoCheck', 1, lambda: x[:]),
        ('SqGetItemNoCheck', 2, lambda: x + [1]), ('SqGetItemNoCheck', 2, lambda: x + range(3)),
        ('SqGetItemNoCheck', 1, lambda: x + iter([1])), ('SqGetItemNoCheck', 1, lambda: x * 3),
        ('SqGetItemNoCheck', 0, lambda: x * 0), ('SqGetItemNoCheck', 2, lambda: x.copy()),
        ('SqSetItem', 0, lambda: set_item(x, 0, 1)), 
        ('SqSetItemNoCheck', 1, lambda: set_item(x, slice(2), [1, 2])),
        ('MpSetItems', 0, lambda: set_item(x, slice(3), x)), ('SqContains', 0, lambda: 1 in x),
        ('SqContains', 0, lambda: x.contains(1)), ('CountOf', 0, lambda: x.count(1)),
        ('IndexBy', 0, lambda: x.index(1)), ('Sort', 0, lambda: x.sort()),
        ('Reverse', 0, lambda: x.reverse()),
        ('GetEnumerator', 0, lambda: iter(x)), ('MoveNext', 1, lambda: [*x]),
    ]:
        fail(name, after)
        raises(RuntimeError, 'managed failure', action)
    assert x[:] == [1, 2, 3]
for kind in growing:
    x = make(kind, [1, 2, 3])
    for name, action in [
        ('Add', lambda: x.append(1)), ('Add', lambda: x.extend([1])), ('Insert', lambda: x.insert(0, 1)),
        ('Remove', lambda: x.remove(1)), ('RemoveAt', lambda: del_item(x, 0)), ('Pop', lambda: x.pop()),
        ('Clear', lambda: x.clear()), ('SqInplaceConcat', lambda: x.extend(x)),
        ('SqInplaceRepeat', lambda: inplace_mul(x, 2)), ('MpRemoveItems', lambda: del_item(x, slice(1))),
    ]:
        fail(name)
        raises(RuntimeError, 'managed failure', action)
    assert x[:] == [1, 2, 3]
)py");
}

TEST_F(ListProtocol, SliceAssignmentNeverChangesTheLength) {
    run(R"py(
for kind in kinds:
    x = make(kind, [0, 1, 2, 3, 4, 5])
    x[0:2] = (7, 8)
    x[::-2] = [1, 2, 3]
    assert x[:] == [7, 3, 2, 2, 4, 1]
    x[2:2] = []
    sizes = 'attempt to assign sequence of size %d to extended slice of size %d'
    raises(ValueError, sizes % (1, 2), set_item, x, slice(0, 2), [1])
    raises(ValueError, sizes % (1, 2), set_item, x, slice(0, 2), (1,))
    raises(ValueError, sizes % (1, 0), set_item, x, slice(2, 2), [7])
    raises(ValueError, sizes % (3, 2), set_item, x, slice(0, 2), range(3))
    raises(TypeError, 'must assign iterable to extended slice', set_item, x, slice(0, 2), 5)
    raises(TypeError, 'must assign iterable to extended slice', set_item, x, slice(0, 2), {1, 2})
    raises(TypeError, 'must assign iterable to extended slice', set_item, x, slice(0, 2), iter([1, 2]))
    # What was written before a failure stays.
    raises(TypeError, 'unknown variant type', set_item, x, slice(0, 3), [9, object(), 9])
    assert x[:] == [9, 3, 2, 2, 4, 1]
    class Pair:
        def __init__(self, items): self.items = items
        def __len__(self): return len(self.items)
        def __getitem__(self, i): return self.items[i]
    x[0:2] = Pair('ab')
    assert x[:2] == ['a', 'b']
    class Refuses(Pair):
        def __len__(self): raise KeyError('no length')
    raises(KeyError, None, set_item, x, slice(0, 2), Refuses('ab'))
    class Short(Pair):
        def __len__(self): return 2
    raises(IndexError, 'string index out of range', set_item, x, slice(0, 2), Short('a'))
)py");
}

TEST_F(ListProtocol, ACollectionIsAssignedInOneCall) {
    run(R"py(
for kind in kinds:
    x, y = make(kind, [0, 1, 2, 3]), make(kind, [7, 8])
    calls()
    x[0:4:2] = y
    assert calls() == ['SqLength()', 'SqLength()', 'MpSetItems(0,0,2,2)']
    assert x[:] == [7, 1, 8, 3]
    raises(ValueError, 'attempt to assign sequence of size 2 to extended slice of size 3',
           set_item, x, slice(3), y)
    # A managed side that did not do it leaves it to the loop.
    setting('handles_bulk', 0)
    calls()
    x[2:] = y
    setting('handles_bulk', 1)
    assert calls() == ['SqLength()', 'SqLength()', 'MpSetItems(0,2,2,1)', 'SqGetItem(0)',
                       'SqSetItemNoCheck(2)', 'SqGetItem(1)', 'SqSetItemNoCheck(3)']
    assert x[:] == [7, 1, 7, 8]
)py");
}

TEST_F(ListProtocol, DeletionGoesFromTheTop) {
    run(R"py(
for kind in [interop._IListWrapper, interop._ColBaseWrapper]:
    x = make(kind, list(range(10)))
    calls()
    del x[1:3]
    assert calls() == ['SqLength()', 'MpRemoveItems(2,2,-1)']
    assert x[:] == [0, 3, 4, 5, 6, 7, 8, 9]
    calls()
    del x[::2]
    assert calls() == ['SqLength()', 'MpRemoveItems(6,4,-2)']
    del x[::-1]
    assert calls() == ['SqLength()', 'MpRemoveItems(3,4,-1)']
    del x[0:0]
    assert calls() == ['SqLength()', 'MpRemoveItems(0,0,-1)']
    assert len(x) == 0
x = make(interop._ArrListWrapper, list(range(10)))
calls()
del x[1:3]
assert calls() == ['SqLength()', 'MpRemoveItems(1,2,-1)']
assert x[:] == [0, 3, 4, 5, 6, 7, 8, 9]
calls()
del x[1:6:2]
assert calls() == ['SqLength()', 'MpRemoveItems(5,3,-2)']
assert x[:] == [0, 4, 6, 8, 9]
calls()
del x[4:1:-1]
assert calls() == ['SqLength()', 'MpRemoveItems(2,3,-1)']
assert x[:] == [0, 4]
calls()
del x[0:0]
assert calls() == ['SqLength()', 'MpRemoveItems(0,0,-1)']
for kind in growing:
    x = make(kind, [1, 2, 3])
    calls()
    del x[-1]
    assert calls() == ['SqLength()', 'RemoveAt(2)']
    raises(IndexError, 'list index out of range', del_item, x, 2)
    raises(TypeError, 'list indices must be integers or slices, not str', del_item, x, 'x')
)py");
}

TEST_F(ListProtocol, AnArrayKeepsItsLength) {
    run(R"py(
x = make(interop._ArrayWrapper, [1, 2, 3])
removing = 'elements removing not supported'
raises(ValueError, removing, del_item, x, 0)
raises(ValueError, removing, del_item, x, 99)
raises(ValueError, removing, del_item, x, slice(None))
raises(TypeError, 'list indices must be integers or slices, not str', del_item, x, 'x')
raises(ValueError, 'slice step cannot be zero', del_item, x, slice(0, 1, 0))
raises(IndexError, "cannot fit 'int' into an index-sized integer", del_item, x, 2**70)
for name in ('append', 'insert', 'extend', 'remove', 'pop', 'clear'):
    assert not hasattr(x, name), name
assert x + [4] == [1, 2, 3, 4] and len(x) == 3
y = x
y += [4]
assert type(y) is list and len(x) == 3
)py");
}

TEST_F(ListProtocol, ConcatMakesAList) {
    run(R"py(
class Sequence:
    def __init__(self, *items): self.items = items
    def __len__(self): return len(self.items)
    def __getitem__(self, i): return self.items[i]
class OnlyItems:
    def __getitem__(self, i): return (7, 8)[i]
class NoIterator:
    __iter__ = None
    def __getitem__(self, i): return 0
for kind in kinds + [interop._IColWrapper, interop._RoColBaseWrapper]:
    x = make(kind, [1, 2])
    for other in ([3], (3,), range(3, 4), Sequence(3), iter([3]), {3}, {3: 0}, make(kind, [3])):
        assert x + other == [1, 2, 3], (kind, other)
    assert x + OnlyItems() == [1, 2, 7, 8]
    assert x + [] == [1, 2] == x + ()
    assert type(x + x) is list
    raises(ValueError, 'argument must be iterable or sequence', add, x, 5)
    raises(ValueError, 'argument must be iterable or sequence', add, x, None)
    class Broken:
        def __iter__(self): raise KeyError('no')
    raises(KeyError, None, add, x, Broken())
    class Ends(Sequence):
        def __len__(self): return 3
    raises(IndexError, None, add, x, Ends(1))
    class Raises:
        def __iter__(self):
            yield 1
            raise KeyError('later')
    raises(KeyError, None, add, x, Raises())
    raises(TypeError, None, add, [1], x)
)py");
}

TEST_F(ListProtocol, RepeatReadsEachElementOnce) {
    run(R"py(
for kind in kinds:
    x = make(kind, ['a', 'b'])
    calls()
    assert x * 3 == ['a', 'b', 'a', 'b', 'a', 'b']
    assert calls() == ['SqLength()', 'SqGetItemNoCheck(0)', 'SqGetItemNoCheck(1)']
    assert x * -1 == [] == x * 0
    assert calls() == ['SqLength()', 'SqGetItemNoCheck(0)', 'SqGetItemNoCheck(1)'] * 2
    assert 2 * x == x * 2
    assert x.copy() == x * 1 == ['a', 'b']
    # A product that wraps is not tested, and what does not fit is not stored.
    raises(TypeError, "can't multiply sequence by non-int of type 'float'", lambda: x * 1.0)
    y = make(kind, ['a'] * 4)
    assert y * 2**62 == []
)py");
}

TEST_F(ListProtocol, GrowingInPlace) {
    run(R"py(
for kind in growing:
    capacity = ['EnsureCapacity(2)'] if kind is interop._ArrListWrapper else []
    x = make(kind, [1])
    calls()
    assert x.extend([2, 3]) is None
    assert calls() == capacity + ['Add()', 'Add()']
    y = x
    y += (4, 5)
    assert y is x
    assert calls() == capacity + ['Add()', 'Add()']
    x.extend(range(2))
    assert calls() == capacity + ['Add()', 'Add()']
    x += iter([6])
    assert calls() == ['Add()']
    x.extend({7: 0})
    assert calls() == ['Add()']
    x += x
    assert calls() == ['SqInplaceConcat(0)']
    assert x[:] == [1, 2, 3, 4, 5, 0, 1, 6, 7] * 2
    calls()
    x.extend([])
    assert calls() == (['EnsureCapacity(0)'] if capacity else [])
    x.extend(range(0))
    assert calls() == (['EnsureCapacity(0)'] if capacity else [])
    raises(ValueError, 'argument must be iterable or sequence', x.extend, 5)
    raises(ValueError, 'argument must be iterable or sequence', inplace_add, x, None)
    raises(TypeError, 'unknown variant type', x.extend, [1, object(), 2])
    assert x[-1] == 1 and len(x) == 19
    x.clear()
    x.extend('ab')
    y = x
    y *= 2
    assert y is x and x[:] == ['a', 'b', 'a', 'b']
    calls()
    x *= -1
    assert calls() == ['SqInplaceRepeat(-1)'] and len(x) == 0
    # A managed side that did not take the collection leaves it to the loop.
    y = make(kind, [1, 2])
    setting('handles_bulk', 0)
    x.extend(y)
    setting('handles_bulk', 1)
    assert x[:] == [1, 2]
    class Refuses:
        def __len__(self): raise KeyError('no length')
        def __getitem__(self, i): raise IndexError
    raises(KeyError, None, x.extend, Refuses())
)py");
}

TEST_F(ListProtocol, MethodsOfAList) {
    run(R"py(
for kind in growing:
    x = make(kind, [3, 1, 2])
    x.append(4)
    calls()
    x.insert(-1, 9)
    assert calls() == ['Insert(-1)']
    x.insert(100, 5)
    assert x[:] == [3, 1, 2, 9, 4, 5]
    raises(TypeError, "'str' object cannot be interpreted as an integer", x.insert, 'x', 1)
    raises(OverflowError, 'Python int too large to convert to C ssize_t', x.insert, 2**70, 1)
    raises(TypeError, 'unknown variant type', x.insert, 0, object())
    class Index:
        def __index__(self): return 0
    x.insert(Index(), 'first')
    x.insert(True, 'second')
    assert x.pop(0) == 'first' and x.pop(0) == 'second'
    raises(TypeError, 'function takes exactly 2 arguments (1 given)', x.insert, 1)
    x.remove(9)
    raises(ValueError, 'list.remove(x): x not in list', x.remove, 9)
    calls()
    assert x.pop() == 5 and x.pop(0) == 3 and x.pop(-1) == 4
    assert calls() == ['Pop(0,0)', 'Pop(1,0)', 'Pop(1,-1)']
    assert x.pop(None) == 1
    assert calls() == ['Pop(1,0)']
    raises(IndexError, 'pop index out of range', x.pop, 7)
    raises(TypeError, "argument should be integer or None, not 'str'", x.pop, 'x')
    raises(OverflowError, "cannot fit 'int' into an index-sized integer", x.pop, 2**70)
    raises(TypeError, 'pop() takes at most 1 argument (2 given)', x.pop, 1, 2)
    x.clear()
    raises(IndexError, 'pop from empty list', x.pop)
for kind in kinds:
    x = make(kind, [3, 1, 2, 1])
    assert x.count(1) == 2 and x.count('no') == 0
    assert x.contains(1) is True and x.contains(9) is False and 1 in x and 9 not in x
    assert x.index(1) == 1 and x.index(1, 2) == 3 and x.index(1, 0, 2) == 1 and x.index(1, -1) == 3
    calls()
    x.index(1, 0)
    assert calls() == ['IndexBy(1,0,0,0)']
    x.index(1, 1, 4)
    assert calls() == ['IndexBy(1,1,1,4)']
    raises(ValueError, 'value is not in list', x.index, 9)
    raises(ValueError, 'value is not in list', x.index, 3, 1)
    raises(TypeError, 'function takes at least 1 argument (0 given)', x.index)
    raises(TypeError, "'NoneType' object cannot be interpreted as an integer", x.index, 1, 1, None)
    raises(TypeError, 'unknown variant type', x.index, object(), 'x')
    raises(TypeError, 'unknown variant type', x.count, object())
    raises(TypeError, 'unknown variant type', x.contains, object())
    raises(TypeError, 'unknown variant type', lambda: object() in x)
    assert x.sort() is None and x[:] == [1, 1, 2, 3]
    x.sort(key=None, reverse=True)
    assert x[:] == [3, 2, 1, 1]
    x.sort(None)
    raises(ValueError, 'custom sorting key is not supported', x.sort, len)
    raises(TypeError, None, lambda: x.sort(nothing=1))
    assert x.reverse() is None and x[:] == [3, 2, 1, 1]
)py");
}

TEST_F(ListProtocol, ACollectionWithoutElementAccessIsWalked) {
    run(R"py(
for kind in [interop._IColWrapper, interop._RoColBaseWrapper]:
    x = make(kind, [1, 2])
    raises(TypeError, None, get_item, x, 0)
    assert not hasattr(x, 'index') and not hasattr(x, 'append')
    assert x * 2 == [1, 2, 1, 2] and x * -1 == [] and x.copy() == [1, 2]
    assert x.count(2) == 1 and 2 in x and x.contains(3) is False and x.length == 2
    text = 'argument must be iterable or sequence'
    setting('length_error', -1)
    raises(ValueError, text, add, x, [3])
    raises(ValueError, text, x.copy)
    setting('length_error', 1)
    raises(ValueError, text, add, x, [3])
    # A repetition does not notice elements that are missing.
    assert x.copy() == [1, 2, None] and len(x * 2) == 6
    setting('length_error', 0)
    for name in ('GetEnumerator', 'MoveNext'):
        fail(name)
        raises(RuntimeError, 'managed failure', add, x, [3])
        fail(name)
        raises(RuntimeError, 'managed failure', x.copy)
)py");
}

TEST_F(ListProtocol, AListThatShrinksWhileItIsReadIsNoHarm) {
    run(R"py(
# Shortens the list in the middle of the walk, out of the conversion of an element.
class Evil:
    def __init__(self, source): self.source = source
    @property
    def __class__(self):
        del self.source[1:]
        return Evil
for kind in growing:
    x, source = make(kind, []), [1, 2, 3]
    source[1] = Evil(source)
    raises(TypeError, 'unknown variant type', x.extend, source)
    assert source == [1] and x[:] == [1]
for kind in kinds:
    x, source = make(kind, [0, 0, 0]), [1, 2, 3]
    source[1] = Evil(source)
    raises(TypeError, 'unknown variant type', set_item, x, slice(None), source)
    assert source == [1] and x[:] == [1, 0, 0]
)py");
}

TEST_F(ListProtocol, NoReferenceIsLostOrLeft) {
    run(R"py(
import sys
class Own(str): pass
value = Own('value')
source = [value] * 3
class Sized:
    def __len__(self): return 3
    def __getitem__(self, i): return value if i < 3 else source[99]
before = sys.getrefcount(value)
for kind in kinds + [interop._IColWrapper]:
    x = make(kind, source)
    for action in (lambda: x[:], lambda: x + source, lambda: x + Sized(), lambda: x + iter(source),
                   lambda: x * 3, lambda: x * 0, lambda: x.copy(), lambda: [*x], lambda: value in x,
                   lambda: x.count(value), lambda: x + 5):
        for name, after in (('', 0), ('SqGetItemNoCheck', 2), ('MoveNext', 2), ('SqLength', 0)):
            fail(name, after)
            try: action()
            except Exception: pass
            fail('')
for kind in kinds:
    x = make(kind, source)
    for action in (lambda: x[0], lambda: set_item(x, 0, value), lambda: set_item(x, slice(3), source),
                   lambda: set_item(x, slice(3), Sized()), lambda: set_item(x, slice(3), x),
                   lambda: x.index(value)):
        for name, after in (('', 0), ('SqSetItemNoCheck', 1), ('SqSetItem', 0), ('IndexBy', 0)):
            fail(name, after)
            try: action()
            except Exception: pass
            fail('')
for kind in growing:
    x = make(kind, source)
    for action in (lambda: x.append(value), lambda: x.extend(source), lambda: x.extend(Sized()),
                   lambda: x.extend(iter(source)), lambda: x.extend(x), lambda: x.insert(0, value),
                   lambda: x.remove(value), lambda: x.pop(), lambda: x.pop(0), lambda: del_item(x, slice(2)),
                   lambda: inplace_mul(x, 2)):
        for name, after in (('', 0), ('Add', 1), ('Insert', 0), ('Remove', 0)):
            fail(name, after)
            try: action()
            except Exception: pass
            fail('')
del x, action
assert sys.getrefcount(value) == before, (sys.getrefcount(value), before)
)py");
}

TEST_F(ListProtocol, RandomOperationsMatchAList) {
    fake::state().recording = false;
    run(R"py(
import random
def outcome(function, *arguments):
    try: return ('value', function(*arguments))
    except Exception as error: return ('error', type(error))

def model_set_slice(model, key, values):
    if len(range(*key.indices(len(model)))) != len(values): raise ValueError
    for i, value in zip(range(*key.indices(len(model))), values): model[i] = value
def model_pop(model, *index):
    if not model: raise IndexError
    return model.pop(*index)

def random_slice(chance, size):
    pick = lambda: chance.choice([None, chance.randint(-size - 2, size + 2)])
    return slice(pick(), pick(), chance.choice([None, 1, 1, 2, 3, -1, -2, -3]))

def run_random(chance, wrapper, model, values, operations, growing):
    shared = ['get', 'set', 'slice', 'set_slice', 'index', 'count', 'in', 'concat', 'repeat', 'copy',
              'iterate', 'sort', 'reverse', 'len']
    grow = ['append', 'insert', 'extend', 'remove', 'pop', 'del', 'del_slice', 'imul', 'iadd', 'clear']
    names = shared + grow * (2 if growing else 0)
    for _ in range(operations):
        size, name = len(model), chance.choice(names)
        i, v, s = chance.randint(-size - 2, size + 2), chance.choice(values), random_slice(chance, size)
        other = [chance.choice(values) for _ in range(chance.randint(0, 4))]
        if name == 'set_slice' and chance.random() < 0.8:
            other = [chance.choice(values) for _ in range(*s.indices(size))]
        made = chance.choice([list, tuple, iter])
        form, again = made(other), made(other)
        pair = {
            'get': lambda: (outcome(wrapper.__getitem__, i), outcome(model.__getitem__, i)),
            'set': lambda: (outcome(wrapper.__setitem__, i, v), outcome(model.__setitem__, i, v)),
            'slice': lambda: (outcome(wrapper.__getitem__, s), outcome(model.__getitem__, s)),
            'set_slice': lambda: (outcome(wrapper.__setitem__, s, other),
                                  outcome(model_set_slice, model, s, other)),
            'index': lambda: (outcome(wrapper.index, v, i), outcome(model.index, v, i)),
            'count': lambda: (outcome(wrapper.count, v), outcome(model.count, v)),
            'in': lambda: (v in wrapper, v in model),
            'concat': lambda: (outcome(add, wrapper, form), outcome(lambda: model + list(again))),
            'repeat': lambda: (wrapper * (i % 4 - 1), model * (i % 4 - 1)),
            'copy': lambda: (wrapper.copy(), model.copy()),
            'iterate': lambda: ([*wrapper], [*model]),
            'sort': lambda: (wrapper.sort(reverse=i % 2), model.sort(reverse=i % 2)),
            'reverse': lambda: (wrapper.reverse(), model.reverse()),
            'len': lambda: (len(wrapper), len(model)),
            'append': lambda: (wrapper.append(v), model.append(v)),
            'insert': lambda: (wrapper.insert(i, v), model.insert(i, v)),
            'extend': lambda: (wrapper.extend(form), model.extend(again)),
            'remove': lambda: (outcome(wrapper.remove, v), outcome(model.remove, v)),
            'pop': lambda: (outcome(wrapper.pop, i), outcome(model_pop, model, i)),
            'del': lambda: (outcome(wrapper.__delitem__, i), outcome(model.__delitem__, i)),
            'del_slice': lambda: (outcome(wrapper.__delitem__, s), outcome(model.__delitem__, s)),
            'imul': lambda: (outcome(inplace_mul, wrapper, i % 3)[0], outcome(model.__imul__, i % 3)[0])
                    if size < 40 else (None, None),
            'iadd': lambda: (outcome(inplace_add, wrapper, form)[0], outcome(model.__iadd__, again)[0])
                    if size < 60 else (wrapper.clear(), model.clear()),
            'clear': lambda: (wrapper.clear(), model.clear()) if chance.random() < 0.2 else (None, None),
        }[name]()
        assert pair[0] == pair[1], (type(wrapper), name, i, v, s, other, pair, model)
        if len(model) > 100:
            wrapper.clear(); model.clear()
    assert wrapper[:] == model

chance = random.Random(20)
numbers = list(range(6))
plan = [(kind, numbers + [], 25000, kind is not interop._ArrayWrapper) for kind in kinds]
plan += [(generic._IListWrapper_A4A29720, numbers, 25000, True),
         (generic._IListWrapper_1BA766B5, [float(n) for n in numbers], 25000, True),
         (generic._ListWrapper_CBE911FC, ['', 'a', 'b', '\u20ac', '\U0001F600', 'longer text'], 25000, True),
         (generic._ArrayWrapper_1BA766B5, [float(n) for n in numbers], 25000, False)]
for kind, values, operations, grows in plan:
    start = [chance.choice(values) for _ in range(10)]
    x = make(kind, start)
    run_random(chance, x, list(start), values, operations, grows)
)py");
}

}  // namespace
