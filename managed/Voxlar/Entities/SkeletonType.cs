namespace Velbor.Voxlar.Entities;

/// <summary>The part a skeleton node plays.</summary>
public enum SkeletonType
{
    /// <summary>The root of a skeleton.</summary>
    Skeleton = 0,

    /// <summary>A bone below the root.</summary>
    Bone = 1,
}
