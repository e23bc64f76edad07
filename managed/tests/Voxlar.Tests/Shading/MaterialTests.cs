using System;
using System.Linq;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Shading;

public class MaterialTests
{
    [Fact]
    public void SlotsAreKeptByName()
    {
        PhongMaterial material = new("m");
        Texture diffuse = new("d");
        Texture normal = new("n");
        material.SetTexture(Material.MapDiffuse, diffuse);
        material.SetTexture(Material.MapNormal, normal);
        Assert.Same(diffuse, material.GetTexture("Diffuse"));
        Assert.Null(material.GetTexture("diffuse"));
        Assert.Equal([("Diffuse", diffuse), ("Normal", normal)],
            material.Select(s => (s.SlotName, (Texture)s.Texture)));
        material.SetTexture(Material.MapDiffuse, normal);
        Assert.Equal(["Diffuse", "Normal"], material.Select(s => s.SlotName));
        Assert.Same(normal, material.GetTexture(Material.MapDiffuse));
        material.SetTexture(Material.MapDiffuse, null);
        material.SetTexture("none", null);
        Assert.Equal(["Normal"], material.Select(s => s.SlotName));
        Assert.Throws<ArgumentNullException>(() => material.SetTexture(null!, normal));
    }

    [Fact]
    public void TexturePropertiesAreSlots()
    {
        Texture texture = new("t");
        PbrMaterial pbr = new() { AlbedoTexture = texture, NormalTexture = texture, EmissiveTexture =
            texture };
        pbr.NormalTexture = null;
        Assert.Equal(2, pbr.Count());
        Assert.Same(texture, pbr.GetTexture(Material.MapEmissive));
        PbrSpecularMaterial specular = new() { SpecularGlossinessTexture = texture };
        Assert.Same(texture, specular.GetTexture(PbrSpecularMaterial.MapSpecularGlossiness));
    }

    [Fact]
    public void PhongBecomesPhysicallyBased()
    {
        Texture texture = new("t");
        PhongMaterial phong = new("steel")
        {
            DiffuseColor = new Vector3(0.1, 0.2, 0.3),
            EmissiveColor = new Vector3(1, 0, 0),
            Transparency = 0.25,
            Shininess = 6,
        };
        phong.SetTexture(Material.MapDiffuse, texture);
        PbrMaterial pbr = PbrMaterial.FromMaterial(phong);
        Assert.Equal("steel", pbr.Name);
        Assert.Equal(phong.DiffuseColor, pbr.Albedo);
        Assert.Equal(phong.EmissiveColor, pbr.EmissiveColor);
        Assert.Equal(0.25, pbr.Transparency);
        Close.To(0.5, pbr.RoughnessFactor);
        Assert.Same(texture, pbr.AlbedoTexture);

        PbrMaterial copy = PbrMaterial.FromMaterial(pbr);
        Assert.NotSame(pbr, copy);
        Assert.Equal(pbr.RoughnessFactor, copy.RoughnessFactor);
        Assert.Same(texture, copy.AlbedoTexture);
        Close.To(0.75, PbrMaterial.FromMaterial(
            new PbrSpecularMaterial { GlossinessFactor = 0.25 }).RoughnessFactor);
        Assert.Throws<NotSupportedException>(() => PbrMaterial.FromMaterial(new ShaderMaterial()));
        Assert.Throws<ArgumentNullException>(() => PbrMaterial.FromMaterial(null!));
    }

    [Fact]
    public void TexturesHaveATransform()
    {
        Texture texture = new("t");
        Assert.Equal(new Vector2(1, 1), texture.UVScale);
        texture.SetTranslation(0.5, 0.25);
        texture.SetScale(2, 3);
        texture.UVRotation = new Vector3(0, 0, 9);
        texture.SetRotation(1, 2);
        Assert.Equal(new Vector2(0.5, 0.25), texture.UVTranslation);
        Assert.Equal(new Vector2(2, 3), texture.UVScale);
        Assert.Equal(new Vector3(1, 2, 9), texture.UVRotation);
        Assert.True(texture.EnableMipMap);
    }

    [Fact]
    public void TechniquesBindParameters()
    {
        ShaderTechnique technique = new() { RenderAPI = "OpenGL" };
        technique.AddBinding("Color", "u_color");
        technique.AddBinding("Tint", "u_color");
        Assert.Equal("Tint", Assert.Single(technique.Bindings).Value);
        ShaderMaterial material = new("s");
        material.Techniques.Add(technique);
        Assert.Same(technique, material.Techniques[0]);
    }
}
