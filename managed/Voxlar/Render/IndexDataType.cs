namespace Velbor.Voxlar.Render;

/// <summary>The type of the indices in an index buffer.</summary>
public enum IndexDataType
{
    Int32 = 0,
    Int16 = 1,
}
