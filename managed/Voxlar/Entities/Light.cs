using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>A light source.</summary>
public class Light : Frustum
{
    /// <summary>Makes a point light.</summary>
    public Light()
        : this("", LightType.Point)
    {
    }

    /// <summary>Makes a point light.</summary>
    /// <param name="name">Its name.</param>
    public Light(string name)
        : this(name, LightType.Point)
    {
    }

    /// <summary>Makes a light.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="type">Its kind.</param>
    public Light(string name, LightType type)
        : base(name)
    {
        LightType = type;
    }

    /// <summary>The colour, linear RGB from 0 to 1; white at first.</summary>
    public Vector3 Color { get; set; } = new(1, 1, 1);

    /// <summary>The kind of the light.</summary>
    public LightType LightType { get; set; }

    /// <summary>Whether the light is on; true at first.</summary>
    public bool CastLight { get; set; } = true;

    /// <summary>The intensity as a factor on the colour; 1 at first.</summary>
    public double Intensity { get; set; } = 1;

    /// <summary>The angle of the cone of full brightness of a spot light, in degrees; 45 at first.</summary>
    public double HotSpot { get; set; } = 45;

    /// <summary>
    /// The angle of the cone outside of which a spot light gives no light, in degrees; 45 at first.
    /// </summary>
    public double Falloff { get; set; } = 45;

    /// <summary>The part of the attenuation that does not depend on the distance; 1 at first.</summary>
    public double ConstantAttenuation { get; set; } = 1;

    /// <summary>The part of the attenuation that grows with the distance.</summary>
    public double LinearAttenuation { get; set; }

    /// <summary>The part of the attenuation that grows with the square of the distance.</summary>
    public double QuadraticAttenuation { get; set; }

    /// <summary>Whether things throw shadows in this light.</summary>
    public bool CastShadows { get; set; }

    /// <summary>The colour of shadows, linear RGB from 0 to 1; black at first.</summary>
    public Vector3 ShadowColor { get; set; }
}
