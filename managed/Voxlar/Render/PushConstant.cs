using System;
using System.Buffers.Binary;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>
/// Gathers small values for a shader, in little-endian order and without gaps, and hands them to a command
/// list.
/// </summary>
public class PushConstant
{
    private byte[] _data = new byte[128];
    private int _size;

    /// <summary>The bytes gathered so far.</summary>
    internal ReadOnlySpan<byte> Data => _data.AsSpan(0, _size);

    /// <summary>Adds a matrix, row by row, as 64 bytes.</summary>
    /// <param name="mat">The matrix.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(FMatrix4 mat) => Add(
        mat.m00, mat.m01, mat.m02, mat.m03, mat.m10, mat.m11, mat.m12, mat.m13,
        mat.m20, mat.m21, mat.m22, mat.m23, mat.m30, mat.m31, mat.m32, mat.m33);

    /// <summary>Adds a number of 4 bytes.</summary>
    /// <param name="n">The number.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(int n)
    {
        BinaryPrimitives.WriteInt32LittleEndian(Grow(sizeof(int)), n);
        return this;
    }

    /// <summary>Adds a number of 4 bytes.</summary>
    /// <param name="f">The number.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(float f) => Add(f);

    /// <summary>Adds a vector as 16 bytes.</summary>
    /// <param name="vec">The vector.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(FVector4 vec) => Add(vec.x, vec.y, vec.z, vec.w);

    /// <summary>Adds a vector as 12 bytes.</summary>
    /// <param name="vec">The vector.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(FVector3 vec) => Add(vec.x, vec.y, vec.z);

    /// <summary>Adds four numbers as 16 bytes.</summary>
    /// <param name="x">The first.</param>
    /// <param name="y">The second.</param>
    /// <param name="z">The third.</param>
    /// <param name="w">The fourth.</param>
    /// <returns>This object.</returns>
    public PushConstant Write(float x, float y, float z, float w) => Add(x, y, z, w);

    /// <summary>Hands the bytes gathered so far to a command list and starts anew.</summary>
    /// <param name="stage">The stage of the shader that reads them.</param>
    /// <param name="commandList">The command list.</param>
    /// <returns>This object.</returns>
    public PushConstant Commit(ShaderStage stage, ICommandList commandList)
    {
        ArgumentNullException.ThrowIfNull(commandList);
        commandList.PushConstants(stage, Data.ToArray());
        _size = 0;
        return this;
    }

    private PushConstant Add(params ReadOnlySpan<float> values)
    {
        foreach (float value in values)
            BinaryPrimitives.WriteSingleLittleEndian(Grow(sizeof(float)), value);
        return this;
    }

    private Span<byte> Grow(int count)
    {
        if (_size + count > _data.Length)
            Array.Resize(ref _data, _data.Length * 2);
        _size += count;
        return _data.AsSpan(_size - count, count);
    }
}
