using System;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace Velbor.WrpGen.Reflection;

/// <summary>The wrapper of any object. A struct comes in by its holder, and is boxed by a cast.</summary>
internal static unsafe partial class ObjectApi
{
    [UnmanagedCallersOnly]
    public static int call_ReferenceEquals(VariantArg* left, VariantArg* right)
    {
        try
        {
            return ReferenceEquals(Handles.GetOrNull(left->Payload), Handles.GetOrNull(right->Payload)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }
}
