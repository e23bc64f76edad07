using System;

namespace Velbor.Voxlar.Utilities;

/// <summary>Conversions of angles and other small computations.</summary>
public sealed class MathUtils
{
    private const double DegreesPerRadian = 180 / Math.PI;

    private MathUtils()
    {
    }

    /// <summary>Radians to degrees, by coordinate.</summary>
    public static Vector3 ToDegree(Vector3 radian) => radian * DegreesPerRadian;

    /// <summary>Radians to degrees.</summary>
    public static float ToDegree(float radian) => (float)(radian * DegreesPerRadian);

    /// <summary>Radians to degrees.</summary>
    public static double ToDegree(double radian) => radian * DegreesPerRadian;

    /// <summary>Radians to degrees, by coordinate.</summary>
    public static Vector3 ToDegree(double x, double y, double z) => ToDegree(new Vector3(x, y, z));

    /// <summary>Degrees to radians, by coordinate.</summary>
    public static Vector3 ToRadian(Vector3 degree) => degree / DegreesPerRadian;

    /// <summary>Degrees to radians.</summary>
    public static float ToRadian(float degree) => (float)(degree / DegreesPerRadian);

    /// <summary>Degrees to radians.</summary>
    public static double ToRadian(double degree) => degree / DegreesPerRadian;

    /// <summary>Degrees to radians, by coordinate.</summary>
    public static Vector3 ToRadian(double x, double y, double z) => ToRadian(new Vector3(x, y, z));

    /// <summary>The value, moved to the nearer bound when it lies outside.</summary>
    /// <exception cref="ArgumentException"><paramref name="min"/> is greater than
    /// <paramref name="max"/>.</exception>
    public static double Clamp(double val, double min, double max) => Math.Clamp(val, min, max);
}
