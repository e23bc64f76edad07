"""Python values in the forms that managed code likes best."""

from types import TracebackType
from typing import Any, Optional, Type, final

from velbor.pygc import _ModuleVersionType as _ModuleVersionType

VERSION: _ModuleVersionType
_BACKWARD_COMPATIBILITY_THRESHOLD: _ModuleVersionType

@final
class BytesAsStream:
    """A raw binary file over the memory of a bytes-like object: written bytes go straight into it. It is writable when
    the memory is, and never grows."""

    def __init__(self, buffer: Any) -> None: ...
    @property
    def closed(self) -> bool: ...
    def read(self, size: Optional[int] = -1, /) -> bytes:
        """Up to size bytes from the position on; all that are left without a size."""

    def readall(self) -> bytes:
        """All bytes that are left."""

    def readinto(self, buffer: Any, /) -> int:
        """Fills a writable buffer; gives the number of bytes, 0 at the end."""

    def write(self, data: Any, /) -> int:
        """Writes over the bytes at the position; gives the number of bytes that fitted. Raises OSError (ENOSPC) when no
        more fit, io.UnsupportedOperation on read-only memory."""

    def seek(self, offset: int, whence: int = 0, /) -> int:
        """Moves the position and gives it."""

    def tell(self) -> int: ...
    def flush(self) -> None: ...
    def close(self) -> None:
        """Lets the memory go. Closing again does nothing."""

    def readable(self) -> bool: ...
    def writable(self) -> bool: ...
    def seekable(self) -> bool: ...
    def __enter__(self) -> "BytesAsStream": ...
    def __exit__(
        self,
        type: Optional[Type[BaseException]] = None,
        value: Optional[BaseException] = None,
        traceback: Optional[TracebackType] = None,
        /,
    ) -> None: ...
