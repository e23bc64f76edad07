namespace Velbor.Voxlar.Entities;

/// <summary>Something that a mesh can be made of.</summary>
public interface IMeshConvertible
{
    /// <summary>Makes the mesh.</summary>
    Mesh ToMesh();
}
