using System;

namespace Velbor.Voxlar.Utilities;

/// <summary>Tells which vertex field a member of a vertex structure stands for.</summary>
[AttributeUsage(AttributeTargets.Field | AttributeTargets.Property)]
public sealed class SemanticAttribute : Attribute
{
    /// <summary>Names the semantic alone.</summary>
    public SemanticAttribute(VertexFieldSemantic semantic)
        : this(semantic, "")
    {
    }

    /// <summary>Names the semantic and the name of the field in a shader.</summary>
    public SemanticAttribute(VertexFieldSemantic semantic, string alias)
    {
        Semantic = semantic;
        Alias = alias ?? "";
    }

    /// <summary>What the field means.</summary>
    public VertexFieldSemantic Semantic { get; }

    /// <summary>The name of the field in a shader; empty when it has none.</summary>
    public string Alias { get; }
}
