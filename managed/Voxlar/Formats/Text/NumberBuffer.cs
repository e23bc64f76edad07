using System;

namespace Velbor.Voxlar.Formats.Text;

/// <summary>
/// Whole numbers that are appended one by one; the array is open to the reader that fills it.
/// </summary>
internal sealed class IntBuffer
{
    /// <summary>The numbers; those from <see cref="Count"/> on mean nothing.</summary>
    public int[] Items = new int[64];

    /// <summary>How many numbers there are.</summary>
    public int Count;

    /// <summary>Appends a number.</summary>
    public void Add(int value)
    {
        if (Count == Items.Length)
            Grow();
        Items[Count++] = value;
    }

    /// <summary>The numbers.</summary>
    public ReadOnlySpan<int> Span => new(Items, 0, Count);

    private void Grow()
    {
        int[] larger = new int[Items.Length * 2];
        Buffer.BlockCopy(Items, 0, larger, 0, Count * sizeof(int));
        Items = larger;
    }
}

/// <summary>Doubles that are appended one by one; the array is open to the reader that fills it.</summary>
internal sealed class DoubleBuffer
{
    /// <summary>The numbers; those from <see cref="Count"/> on mean nothing.</summary>
    public double[] Items = new double[64];

    /// <summary>How many numbers there are.</summary>
    public int Count;

    /// <summary>Appends a number.</summary>
    public void Add(double value)
    {
        if (Count == Items.Length)
            Grow();
        Items[Count++] = value;
    }

    private void Grow()
    {
        double[] larger = new double[Items.Length * 2];
        Buffer.BlockCopy(Items, 0, larger, 0, Count * sizeof(double));
        Items = larger;
    }
}
