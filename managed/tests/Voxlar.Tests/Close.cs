using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests;

/// <summary>Assertions that allow for rounding.</summary>
public static class Close
{
    public static void To(double expected, double actual, double tolerance = 1e-9) =>
        Assert.True(Math.Abs(expected - actual) <= tolerance, $"expected {expected}, got {actual}");

    public static void To(Vector3 expected, Vector3 actual, double tolerance = 1e-9) =>
        Assert.True((expected - actual).Length <= tolerance, $"expected {expected}, got {actual}");

    public static void To(Matrix4 expected, Matrix4 actual, double tolerance = 1e-9)
    {
        double[] a = expected.ToArray();
        double[] b = actual.ToArray();
        for (int i = 0; i < a.Length; i++)
            Assert.True(Math.Abs(a[i] - b[i]) <= tolerance, $"expected {expected}, got {actual}");
    }

    /// <summary>The same rotation: q and -q count as equal.</summary>
    public static void ToRotation(Quaternion expected, Quaternion actual, double tolerance = 1e-9) =>
        Assert.True(
            1 - Math.Abs(expected.Normalize().Dot(actual.Normalize())) <= tolerance,
            $"expected {expected}, got {actual}");
}
