"""Managed types, objects and enum values, whatever their class."""

from typing import Any, Optional, Tuple, final

from velbor.pygc import CastResult
from velbor.pygc import _ModuleVersionType as _ModuleVersionType

VERSION: _ModuleVersionType
_BACKWARD_COMPATIBILITY_THRESHOLD: _ModuleVersionType

class Object:
    """Any managed object. Equality, hash and text are those of the object."""

    @staticmethod
    def reference_equals(left: Any, right: Any, /) -> bool:
        """Whether two wrappers stand for the very same managed object."""

    def get_type(self) -> "Type":
        """The object's own type."""

    @staticmethod
    def _type_of() -> "Type": ...
    @staticmethod
    def _cast_to(obj: Any, /) -> "CastResult[Object]": ...
    @staticmethod
    def _cast_as(obj: Any, /) -> "CastResult[Object]": ...
    def _cast_from(self, type: Any, /) -> "CastResult[Any]": ...
    @staticmethod
    def _is_assignable(obj: Any, /) -> bool: ...
    @staticmethod
    def _reinterpret_obj(obj: "Object", /) -> "Object": ...

@final
class Type(Object):
    """A managed type. Two wrappers of one type are equal and hash alike. Where a type is an argument, a wrapper class
    stands for its type."""

    @property
    def name(self) -> str:
        """The name without its namespace."""

    @property
    def full_name(self) -> Optional[str]:
        """The name with its namespace; None for a type that has no name of its own, such as a type parameter."""

    @property
    def namespace(self) -> Optional[str]:
        """The namespace; None without one."""

    @property
    def assembly_name(self) -> str:
        """The simple name of the assembly."""

    @property
    def base_type(self) -> "Optional[Type]":
        """The base; None for interfaces and System.Object."""

    @property
    def element_type(self) -> "Optional[Type]":
        """What an array holds; None for others."""

    @property
    def is_abstract(self) -> bool: ...
    @property
    def is_array(self) -> bool: ...
    @property
    def is_class(self) -> bool: ...
    @property
    def is_enum(self) -> bool: ...
    @property
    def is_generic_type(self) -> bool: ...
    @property
    def is_interface(self) -> bool: ...
    @property
    def is_sealed(self) -> bool: ...
    @property
    def is_value_type(self) -> bool: ...
    def is_assignable_from(self, other: Any, /) -> bool:
        """Whether a value of the other type can stand where this one is declared."""

    def is_subclass_of(self, other: Any, /) -> bool:
        """Whether this type derives from the other one."""

    def is_instance_of_type(self, value: Any, /) -> bool:
        """Whether a managed object is one of this type; false for None."""

    def get_interfaces(self) -> "Tuple[Type, ...]":
        """The interfaces that the type implements."""

    @staticmethod
    def _cast_to(obj: Any, /) -> "CastResult[Type]": ...
    @staticmethod
    def _cast_as(obj: Any, /) -> "CastResult[Type]": ...
    @staticmethod
    def _reinterpret_obj(obj: Object, /) -> "Type": ...

@final
class Enum(Object):
    """A value of a managed enum, whatever its type. It converts to its number. Where one is an argument, a member of an
    enum class stands for it."""

    @property
    def name(self) -> Optional[str]:
        """The member's name; None for a number that no member has."""

    @property
    def value(self) -> int:
        """The member's number."""

    def has_flag(self, flag: Any, /) -> bool:
        """Whether all bits of another value of the same enum are set in this one."""

    def __int__(self) -> int: ...
    def __index__(self) -> int: ...
    @staticmethod
    def _cast_to(obj: Any, /) -> "CastResult[Enum]": ...
    @staticmethod
    def _cast_as(obj: Any, /) -> "CastResult[Enum]": ...
    @staticmethod
    def _reinterpret_obj(obj: Object, /) -> "Enum": ...
