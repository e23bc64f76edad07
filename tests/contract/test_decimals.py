"""Decimals through the callbacks that the managed side gets, against a model in Python's own decimal arithmetic."""

from __future__ import annotations

import ctypes
import decimal
import random
from decimal import Decimal, DecimalTuple
from typing import Any, Callable, Optional, Tuple

import pytest

Words = ctypes.c_uint32 * 4
# Mantissa and flags: what the four words say.
Managed = Tuple[int, int]

LARGEST = 2**96 - 1
READ_TABLE, WRITE_TABLE = 0, 1
READ_DECIMAL, WRITE_DECIMAL = 4, 7

WIDE = decimal.Context(prec=200, Emax=decimal.MAX_EMAX, Emin=decimal.MIN_EMIN)


def callback(managed: Any, table: int, slot: int, result: Any, *arguments: Any) -> Callable[..., Any]:
    """A slot of the static tables, as a function that raises what it leaves pending."""
    tables = ctypes.cast(managed.callbacks["SetPyStaticCallbacks"], ctypes.POINTER(ctypes.c_void_p))
    slots = ctypes.cast(tables[table], ctypes.POINTER(ctypes.c_void_p))
    return ctypes.PYFUNCTYPE(result, *arguments)(slots[slot])


def value_of(words: Any) -> Managed:
    return words[0] | words[1] << 32 | words[2] << 64, words[3]


def whole(digits: Tuple[int, ...], tenths: int, rounding: str) -> int:
    """The digits as an integer, the last `tenths` of them (0 or 1) rounded away."""
    number = Decimal(DecimalTuple(0, digits, -tenths))
    return int(number.quantize(Decimal(1), rounding=rounding, context=WIDE))


def model(number: DecimalTuple) -> Optional[Managed]:
    """What a managed decimal makes of the number; None when it is too large for one."""
    digits, exponent = number.digits, int(number.exponent)
    count = len(digits)
    if exponent + count > 29 and count > 1:
        return None
    kept = min(count, 29, count + exponent + 28) if exponent < -28 else min(count, 29)
    if kept < 0:
        return 0, 0
    scale = kept - exponent - count
    # One digit behind the last kept one decides. Digits are folded in groups of nine, and a tie looks for its even
    # neighbour within the group: where the deciding digit opens a group there is none, and it goes down.
    rounding = decimal.ROUND_HALF_DOWN if kept % 9 == 0 else decimal.ROUND_HALF_EVEN
    mantissa = whole(digits[: kept + 1], 1 if kept < count else 0, rounding)
    if kept == 29 and scale > 0 and mantissa > LARGEST:
        mantissa = whole(Decimal(mantissa).as_tuple().digits, 1, decimal.ROUND_HALF_EVEN)
        scale -= 1
    if mantissa == 0:
        return 0, 0
    if scale < 0:
        mantissa *= 10**-scale
        scale = 0
    if mantissa > LARGEST:
        return None
    return mantissa, number.sign << 31 | scale << 16


def some_number(source: random.Random) -> DecimalTuple:
    """Up to 60 digits; a quarter lies near the largest managed decimal, fives are frequent."""
    text = str(source.getrandbits(200)).zfill(60)[-source.randrange(1, 61) :] if source.random() < 0.98 else ""
    pick = source.randrange(4)
    if pick == 0:
        text = (str(LARGEST)[:27] + text)[:60]
    elif pick == 1:
        text = text.replace("7", "5").replace("2", "5")
    return DecimalTuple(source.randrange(2), tuple(map(int, text)), source.randrange(-60, 61))


def test_a_million_numbers_to_managed(managed: Any, voxlar: Any) -> None:
    read = callback(managed, READ_TABLE, READ_DECIMAL, ctypes.c_int, ctypes.py_object, ctypes.c_void_p)
    source = random.Random(20231)
    words = Words()
    address = ctypes.addressof(words)
    outcomes = {"too large": 0, "fits": 0}
    for index in range(1_000_000):
        number = some_number(source)
        given: Any = number
        if index % 4:
            given = Decimal(number)
            number = given.as_tuple()
        try:
            assert read(given, address) == 1
            actual: Optional[Managed] = value_of(words)
            outcomes["fits"] += 1
        except OverflowError as error:
            assert str(error) == "value too large for .Net decimal"
            actual = None
            outcomes["too large"] += 1
        assert actual == model(number), number
    # Both outcomes are met often, or the numbers prove little.
    assert min(outcomes.values()) > 100_000, outcomes


def test_every_scale_back_to_python(managed: Any, voxlar: Any) -> None:
    write = callback(managed, WRITE_TABLE, WRITE_DECIMAL, ctypes.py_object, ctypes.c_void_p)
    source = random.Random(20232)
    for index in range(100_000):
        mantissa = source.getrandbits(source.randrange(97))
        scale, sign = index % 29, source.randrange(2)
        words = Words(mantissa & 0xFFFFFFFF, mantissa >> 32 & 0xFFFFFFFF, mantissa >> 64, sign << 31 | scale << 16)
        expected = Decimal(mantissa).as_tuple()._replace(sign=sign, exponent=-scale)
        assert write(ctypes.addressof(words)).as_tuple() == expected


@pytest.mark.parametrize(
    ("value", "error"),
    [
        (Decimal("Infinity"), "value too large for .Net 'Decimal'"),
        (Decimal("sNaN"), "value is not a number"),
        (Decimal("NaN"), "value is not a number"),
        (Decimal("79228162514264337593543950336"), "value too large for .Net decimal"),
    ],
)
def test_what_no_managed_decimal_can_hold(managed: Any, voxlar: Any, value: Decimal, error: str) -> None:
    read = callback(managed, READ_TABLE, READ_DECIMAL, ctypes.c_int, ctypes.py_object, ctypes.c_void_p)
    with pytest.raises(OverflowError) as caught:
        words = Words()
        read(value, ctypes.addressof(words))
    assert str(caught.value) == error
