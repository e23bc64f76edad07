using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text.Json;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

/// <summary>
/// Every entry point that the native half binds is there, in the form in which it is called.
/// </summary>
public class EntryPointTests
{
    private static readonly Assembly s_interop = typeof(Handles).Assembly;

    private static string Generated =>
        typeof(EntryPointTests).Assembly.GetCustomAttributes<AssemblyMetadataAttribute>()
            .Single(attribute => attribute.Key == "GeneratedDir").Value!;

    [Fact]
    public void Both_halves_agree_on_every_wrapped_type()
    {
        using JsonDocument entries = JsonDocument.Parse(File.ReadAllText(Path.Combine(Generated, "entries.json")));
        List<string> wrong = [];
        int count = 0;
        foreach (JsonProperty type in entries.RootElement.EnumerateObject())
        {
            Type? managed = s_interop.GetType(type.Name);
            foreach (JsonElement entry in type.Value.EnumerateArray())
            {
                count++;
                if (Fault(managed, entry) is { } fault)
                {
                    wrong.Add($"{type.Name}.{entry.GetProperty("name").GetString()}: {fault}");
                }
            }
        }

        Assert.Empty(wrong);
        Assert.True(count > 2000, $"only {count} entry points were compared");
    }

    [Theory]
    [InlineData("ExchangeHost", "GetTypeName SetExceptionCallback SetCatchAndClearErrorCallback SetU16StrBuilderCallback " +
        "SetPyStrBuilderCallback SetPyUnraisableStrBuilderCallback SetPyBytesBuilderCallback SetPyObjApiCallbacks " +
        "SetPyStaticCallbacks SetPyGenericCallbacks FreePendingArgs FreeInstance InitServices BoxStcTarget")]
    [InlineData("ObjectHost", "ToStringOfObj ToStringOfStc GetHashOfObj GetHashOfStc IsEqualsOfObj IsEqualsOfStc IsTypeOf " +
        "GetTypeName GetObjType GetStcType Dispose")]
    [InlineData("SiApiEnumerator", "MoveNext btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs")]
    [InlineData("SiApiEnumerable", "GetEnumerator CreateInstanceFromPyIterable btp_IsAssignable btp_TypeOf btp_CastTo " +
        "btp_CastAs")]
    [InlineData("SiApiDisposable", "btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs")]
    [InlineData("SiApiCntCollection", "SqLength SqContains CountOf CreateInstanceFromPyList CreateInstanceFromPyIterable " +
        "btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs")]
    [InlineData("SiApiCntList", "SqGetItem SqGetItemNoCheck SqSetItem SqSetItemNoCheck Add Insert Remove RemoveAt Pop Clear " +
        "SqInplaceConcat SqInplaceRepeat MpSetItems MpRemoveItems Reverse Sort IndexBy SqContains CountOf " +
        "CreateInstanceFromPyList CreateInstanceFromPySequence btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs")]
    [InlineData("SiApiArray", "SqLength SqContains SqGetItem SqGetItemNoCheck SqSetItem SqSetItemNoChek MpSetItems Reverse " +
        "Sort IndexBy CountOf CreateInstanceFromPyList CreateInstanceFromPySequence btp_IsAssignable btp_TypeOf btp_CastTo " +
        "btp_ReInterpretObj btp_CastAs")]
    [InlineData("SiApiArrayList", "SqLength Add Remove Clear SqContains SqGetItem SqGetItemNoCheck SqSetItem " +
        "SqSetItemNoChek Insert RemoveAt Pop SqInplaceConcat SqInplaceRepeat MpSetItems MpRemoveItems Reverse Sort IndexBy " +
        "CountOf EnsureCapacity CreateInstanceFromPyList CreateInstanceFromPySequence btp_IsAssignable btp_TypeOf btp_CastTo " +
        "btp_ReInterpretObj btp_CastAs")]
    [InlineData("SiApiCollectionBase", "CreateInstanceFromPyList CreateInstanceFromPySequence btp_IsAssignable btp_TypeOf " +
        "btp_CastTo btp_ReInterpretObj btp_CastAs")]
    [InlineData("SiApiReadOnlyCollectionBase", "CreateInstanceFromPyList CreateInstanceFromPySequence btp_IsAssignable " +
        "btp_TypeOf btp_CastTo btp_ReInterpretObj btp_CastAs")]
    [InlineData("SiApiStream", "CanRead CanSeek CanWrite Length Position Close Flush Read Seek SetLength Write " +
        "btp_IsAssignable btp_TypeOf btp_CastTo btp_ReInterpretObj btp_CastAs")]
    public void A_service_class_offers_its_names(string name, string entries)
    {
        Type type = s_interop.GetType($"Velbor.WrpGen.Interop.{name}", throwOnError: true)!;
        Assert.DoesNotContain(entries.Split(' '), entry => Entry(type, entry) == null);
    }

    [Fact]
    public void Every_entry_class_is_free_of_static_state()
    {
        IEnumerable<Type> classes = s_interop.GetTypes().Where(type => type.GetMethods()
            .Any(method => method.GetCustomAttribute<UnmanagedCallersOnlyAttribute>() != null));
        Assert.DoesNotContain(classes, type => type.TypeInitializer != null ||
            type.GetFields(BindingFlags.Static | BindingFlags.Public | BindingFlags.NonPublic).Length > 0);
    }

    private static MethodInfo? Entry(Type type, string name) => type.GetMethods()
        .SingleOrDefault(method => method.Name == name &&
            method.GetCustomAttribute<UnmanagedCallersOnlyAttribute>() != null);

    private static string? Fault(Type? type, JsonElement entry)
    {
        if (type == null)
        {
            return "no such class";
        }

        if (Entry(type, entry.GetProperty("name").GetString()!) is not { } method)
        {
            return "no such entry point";
        }

        JsonElement.ArrayEnumerator arguments = entry.GetProperty("arguments").EnumerateArray();
        string told = string.Join(", ", arguments.Select(argument => Form(argument.GetString()!)));
        string made = string.Join(", ", method.GetParameters().Select(parameter => Form(parameter.ParameterType)));
        if (told != made)
        {
            return $"takes ({made}), is given ({told})";
        }

        string result = Form(entry.GetProperty("result").GetString()!);
        return result == Form(method.ReturnType) ? null : $"gives {Form(method.ReturnType)}, {result} is wanted";
    }

    /// <summary>How a value crosses: the width and the register class are what matter.</summary>
    private static string Form(string native) => native.Replace("const ", "").Trim() switch
    {
        var pointer when pointer.EndsWith('*') || pointer.EndsWith('&') => "pointer",
        "void" => "void",
        "double" => "double",
        "float" => "float",
        "bool" or "unsigned char" or "uint8_t" or "std::uint8_t" => "byte",
        "int" or "int32_t" or "std::int32_t" => "int",
        "unsigned int" or "unsigned" or "uint32_t" or "std::uint32_t" => "uint",
        "long" or "int64_t" or "std::int64_t" => "long",
        var other => other,
    };

    private static string Form(Type type) => type.IsPointer ? "pointer"
        : type == typeof(void) ? "void"
        : type == typeof(double) ? "double"
        : type == typeof(float) ? "float"
        : type == typeof(byte) ? "byte"
        : type == typeof(int) ? "int"
        : type == typeof(uint) ? "uint"
        : type == typeof(long) ? "long"
        : type.Name;
}
