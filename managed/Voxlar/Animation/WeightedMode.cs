namespace Velbor.Voxlar.Animation;

/// <summary>Which tangent weights of a key frame count.</summary>
public enum WeightedMode
{
    None = 0,
    OutWeight = 1,
    NextInWeight = 2,
    Both = 3,
}
