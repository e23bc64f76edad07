using System;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// The wire forms of date and time: ticks of 100 ns, the kind of a date and time in the two top bits.
/// </summary>
internal static unsafe class Ticks
{
    private const int KindShift = 62;
    private const long TicksMask = (1L << KindShift) - 1;

    public static DateTime ToDateTime(long value) => new(value & TicksMask, ((ulong)value >> KindShift) switch
    {
        0 => DateTimeKind.Unspecified,
        1 => DateTimeKind.Utc,
        _ => DateTimeKind.Local,
    });

    /// <summary>Fills the pair: the value with its kind, then the offset of local time.</summary>
    public static void FromDateTime(DateTime value, long* pair)
    {
        pair[0] = (long)((ulong)value.Ticks | ((ulong)value.Kind << KindShift));
        pair[1] = value.Kind == DateTimeKind.Local ? TimeZoneInfo.Local.GetUtcOffset(value).Ticks : 0;
    }

    /// <summary>Fills the pair: the clock time, then its offset.</summary>
    public static void FromDateTimeOffset(DateTimeOffset value, long* pair)
    {
        pair[0] = value.Ticks;
        pair[1] = value.Offset.Ticks;
    }

    public static DateTimeOffset ToDateTimeOffset(long* pair) =>
        new(pair[0] & TicksMask, TimeSpan.FromTicks(pair[1]));
}
