// Bare shapes of types whose folders are still to come; each goes when its own file arrives.
using System.Collections.Generic;
using System.Collections;
using Velbor.Voxlar.Utilities;
namespace Velbor.Voxlar.Entities {
    public enum VertexElementType { Binormal = 0, Normal = 1, Tangent = 2, Material = 3, PolygonGroup = 4, UV = 5, VertexColor = 6, SmoothingGroup = 7, VertexCrease = 8, EdgeCrease = 9, UserData = 10, Visibility = 11, Specular = 12, Weight = 13, Hole = 14 }
    public abstract class VertexElement { public VertexElementType VertexElementType => default; }
    public class Geometry : Entity { public Geometry(string name) : base(name) {} public IList<Vector4> ControlPoints { get; } = new List<Vector4>(); public IList<VertexElement> VertexElements { get; } = new List<VertexElement>(); }
    public class Mesh : Geometry { public Mesh() : base("") {} }
    public class Camera : Entity { public Camera() : base("") {} }
}
namespace Velbor.Voxlar.Shading { public class Material : VbrObject { } }
namespace Velbor.Voxlar.Render { public class EntityRendererKey { public EntityRendererKey(string name) {} } public class TextureData {} }
namespace Velbor.Voxlar.Animation {
    public class BindPoint : VbrObject {} public class KeyframeSequence : VbrObject {}
    public class AnimationNode : VbrObject { public BindPoint? GetBindPoint(VbrObject o, string n, bool c) => null; public KeyframeSequence? GetKeyframeSequence(VbrObject o, string n, bool c) => null; }
    public class AnimationClip : SceneObject { public AnimationClip(string n) : base(n) {} }
}
