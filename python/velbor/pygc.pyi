"""The managed garbage collector, and the results of casts."""

from typing import Any, Generic, Iterator, Optional, TypeVar, final

_T_co = TypeVar("_T_co", covariant=True)

@final
class _ModuleVersionType:
    """The version of a module of the family."""

    @property
    def major(self) -> int: ...
    @property
    def minor(self) -> int: ...
    @property
    def patch(self) -> int: ...
    @property
    def sub(self) -> int: ...
    @property
    def view(self) -> str: ...
    def __lt__(self, other: "_ModuleVersionType") -> bool: ...
    def __le__(self, other: "_ModuleVersionType") -> bool: ...
    def __gt__(self, other: "_ModuleVersionType") -> bool: ...
    def __ge__(self, other: "_ModuleVersionType") -> bool: ...

VERSION: _ModuleVersionType
_BACKWARD_COMPATIBILITY_THRESHOLD: _ModuleVersionType

@final
class CastResult(Generic[_T_co]):
    """The result of a cast: true when it succeeded. It unpacks into (succeeded, value)."""

    @property
    def succeeded(self) -> bool:
        """Whether the cast succeeded."""

    @property
    def value(self) -> Optional[_T_co]:
        """The object as the type of the cast; None when there is none."""

    @property
    def status(self) -> int:
        """The managed side's own answer, 0 for a refused cast."""

    def __bool__(self) -> bool: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Any]: ...
    def __getitem__(self, index: int) -> Any: ...

def collect() -> None:
    """Runs the managed collector with its finalizers, and gives back every Python object that managed code no longer
    uses. Raises RuntimeError when the runtime is not started."""

def living_handles() -> int:
    """How many managed objects the wrappers of this process hold."""

def total_memory() -> int:
    """Bytes that the managed heap holds, without a collection before."""
