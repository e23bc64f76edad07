using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Render;

public class RenderTests
{
    [Fact]
    public void ThereIsNoRendererInThisBuild()
    {
        NotSupportedException error = Assert.Throws<NotSupportedException>(Renderer.CreateRenderer);
        Assert.Equal("rendering is not available in this build", error.Message);
    }

    [Fact]
    public void KeysOfOneNameAreEqual()
    {
        Assert.Equal(new EntityRendererKey("a"), new EntityRendererKey("a"));
        Assert.NotEqual(new EntityRendererKey("a"), new EntityRendererKey("b"));
        Assert.Equal("a", new EntityRendererKey("a").ToString());
        Assert.Equal(new Box().GetEntityRendererKey(), new Sphere().GetEntityRendererKey());
        Assert.NotEqual(new Mesh().GetEntityRendererKey(), new PointCloud().GetEntityRendererKey());
    }

    [Fact]
    public void StatesCompareByAllValues()
    {
        RenderState a = new();
        RenderState b = new();
        Assert.Equal(0, a.CompareTo(b));
        Assert.True(a.CompareTo(null) > 0);
        Action<RenderState>[] changes =
        [
            s => s.Blend = true, s => s.BlendColor = new FVector4(0, 0, 1, 0), s => s.CullFace = false,
            s => s.FrontFace = FrontFace.Clockwise, s => s.DepthMask = false, s => s.StencilMask = 7,
            s => s.StencilBackFace.PassAction = StencilAction.Invert, s => s.StencilFrontFace.Compare =
                CompareFunction.Less,
            s => s.PolygonMode = PolygonMode.Line, s => s.ScissorTest = true, s => s.StencilReference = 3,
            s => s.SourceBlendFactor = BlendFactor.DstColor, s => s.DepthFunction = CompareFunction.Always,
        ];
        foreach (Action<RenderState> change in changes)
        {
            using RenderState changed = new();
            change(changed);
            Assert.NotEqual(0, a.CompareTo(changed));
            Assert.Equal(-Math.Sign(a.CompareTo(changed)), Math.Sign(changed.CompareTo(a)));
        }
        a.Dispose();
        b.Dispose();
    }

    [Fact]
    public void PushConstantsAreGathered()
    {
        Recorder recorder = new();
        PushConstant push = new();
        Assert.Same(push, push.Write(7).Write(1.5f).Write(new FVector3(1, 2, 3)).Write(
            new FVector4(4, 5, 6, 7)));
        push.Write(8, 9, 10, 11).Commit(ShaderStage.FragmentShader, recorder);
        Assert.Equal(ShaderStage.FragmentShader, recorder.Stage);
        Assert.Equal(7, BitConverter.ToInt32(recorder.Data, 0));
        float[] floats = Enumerable.Range(1, 12).Select(i =>
            BitConverter.ToSingle(recorder.Data, 4 * i)).ToArray();
        Assert.Equal([1.5f, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11], floats);
        Assert.Equal(52, recorder.Data.Length);

        FMatrix4 matrix = FMatrix4.Identity;
        matrix.m01 = 2;
        push.Write(matrix).Write(matrix).Write(matrix).Commit(ShaderStage.VertexShader, recorder);
        Assert.Equal(192, recorder.Data.Length);
        Assert.Equal(2, BitConverter.ToSingle(recorder.Data, 4));
        push.Commit(ShaderStage.VertexShader, recorder);
        Assert.Empty(recorder.Data);
    }

    [Fact]
    public void ExceptionsAndSourcesKeepTheirValues()
    {
        DriverException driver = new(42, "lost");
        Assert.Equal((42u, "lost"), (driver.ErrorCode, driver.Message));
        Assert.Equal("no", new InitializationException("no").Message);
        Assert.NotEmpty(new InitializationException().Message);
        Assert.Equal("bad", new ShaderException("bad").Message);
        GLSLSource glsl = new() { VertexShader = "void main() {}" };
        glsl.DefineInclude("a.glsl", "1");
        glsl.DefineInclude("a.glsl", "2");
        Assert.Equal("2", glsl.Includes["a.glsl"]);
        Assert.Equal([1, 2], new SPIRVSource { ComputeShader = [1, 2] }.ComputeShader);
        RenderParameters parameters = new(true, 32, 24, 8);
        Assert.Equal((true, 32, 24, 8),
            (parameters.DoubleBuffering, parameters.ColorBits, parameters.DepthBits, parameters.StencilBits));
        Assert.Equal("color", new ShaderVariable("color", ShaderStage.FragmentShader).Name);
    }

    [Fact]
    public void EntityRenderersDoNothingByThemselves()
    {
        EntityRenderer renderer =
            new("Mesh", EntityRendererFeatures.FrameBegin | EntityRendererFeatures.Shadowmap);
        Assert.Equal((EntityRendererFeatures)5, renderer.Features);
        Assert.Equal(new EntityRendererKey("Mesh"), renderer.Key);
        renderer.ResetSceneCache();
        renderer.Dispose();
    }

    private sealed class Recorder : ICommandList
    {
        public ShaderStage Stage { get; private set; }

        public byte[] Data { get; private set; } = [];

        public void PushConstants(ShaderStage stage, byte[] data)
        {
            Stage = stage;
            Data = data;
        }

        public void PushConstants(ShaderStage stage, byte[] data, int size) =>
            PushConstants(stage, data[..size]);

        public void Draw(int start, int count)
        {
        }

        public void Draw()
        {
        }

        public void DrawIndex()
        {
        }

        public void DrawIndex(int start, int count)
        {
        }

        public void BindPipeline(IPipeline pipeline)
        {
        }

        public void BindVertexBuffer(IVertexBuffer vertexBuffer)
        {
        }

        public void BindIndexBuffer(IIndexBuffer indexBuffer)
        {
        }

        public void BindDescriptorSet(IDescriptorSet descriptorSet)
        {
        }
    }
}
