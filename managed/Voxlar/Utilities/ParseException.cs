using System;

namespace Velbor.Voxlar.Utilities;

/// <summary>A text, such as the path of a node query, does not follow its grammar.</summary>
public class ParseException : Exception
{
    /// <summary>Makes the exception with its message.</summary>
    public ParseException(string msg)
        : base(msg)
    {
    }
}
