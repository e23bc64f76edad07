using System;

namespace Velbor.Voxlar.Render;

/// <summary>A shader program with its fixed state, as a device has it.</summary>
public interface IPipeline : IDisposable
{
}
