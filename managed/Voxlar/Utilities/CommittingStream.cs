using System;
using System.IO;

namespace Velbor.Voxlar.Utilities;

/// <summary>A stream in memory that hands over its bytes once, when it is disposed.</summary>
internal sealed class CommittingStream : MemoryStream
{
    private Action<byte[]>? _commit;

    public CommittingStream(Action<byte[]> commit) => _commit = commit;

    protected override void Dispose(bool disposing)
    {
        Action<byte[]>? commit = _commit;
        _commit = null;
        if (disposing)
            commit?.Invoke(ToArray());
        base.Dispose(disposing);
    }
}
