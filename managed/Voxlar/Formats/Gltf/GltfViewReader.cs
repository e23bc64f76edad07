using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes cameras and lights. In a document they look down the negative z axis of their node; an entity tells
/// its direction in the space of the scene, so every node gets an entity of its own.
/// </summary>
internal sealed class GltfViewReader
{
    private const double RadianInDegrees = 180 / Math.PI;

    private readonly GltfJson[] _cameras;
    private readonly GltfJson[] _lights;
    private readonly bool[] _usedCameras;
    private readonly bool[] _usedLights;

    internal GltfViewReader(GltfJson root)
    {
        _cameras = root.Objects("cameras");
        _lights = root.TryGetExtension(GltfNames.LightsPunctual, out GltfJson extension)
            ? extension.Objects("lights") : [];
        _usedCameras = new bool[_cameras.Length];
        _usedLights = new bool[_lights.Length];
    }

    internal void AddTo(Node node, GltfJson json)
    {
        int camera = json.Index("camera", _cameras.Length, "camera");
        if (camera >= 0)
        {
            _usedCameras[camera] = true;
            Add(node, MakeCamera(_cameras[camera]));
        }
        if (json.TryGetExtension(GltfNames.LightsPunctual, out GltfJson extension)
            && extension.TryGet("light", out _))
        {
            int light = extension.Index("light", _lights.Length, "light");
            _usedLights[light] = true;
            Add(node, MakeLight(_lights[light]));
        }
    }

    /// <summary>Cameras and lights that no node shows.</summary>
    internal IEnumerable<Entity> Unused()
    {
        for (int i = 0; i < _cameras.Length; i++)
        {
            if (!_usedCameras[i])
                yield return MakeCamera(_cameras[i]);
        }
        for (int i = 0; i < _lights.Length; i++)
        {
            if (!_usedLights[i])
                yield return MakeLight(_lights[i]);
        }
    }

    private static void Add(Node node, Frustum view)
    {
        Matrix4 global = node.EvaluateGlobalTransform(false);
        var forward = new Vector3(-global.m20, -global.m21, -global.m22);
        var up = new Vector3(global.m10, global.m11, global.m12);
        if (forward.Length > 0)
            view.Direction = forward;
        if (up.Length > 0)
            view.Up = up.Normalize();
        node.AddEntity(view);
    }

    private static Camera MakeCamera(GltfJson json)
    {
        string type = json.Require("type").AsString();
        var camera = new Camera(json.StringOrNull("name") ?? string.Empty);
        switch (type)
        {
            case "perspective":
                SetPerspective(camera, json.Require("perspective"));
                break;
            case "orthographic":
                SetOrthographic(camera, json.Require("orthographic"));
                break;
            default:
                throw json.Place.Child("type").Fault($"there is no camera type \"{type}\"");
        }
        GltfExtras.Read(json, camera);
        GltfExtensionData.Read(json, camera);
        return camera;
    }

    private static void SetPerspective(Camera camera, GltfJson json)
    {
        camera.ProjectionType = ProjectionType.Perspective;
        double angle = json.Require("yfov").AsDouble() * RadianInDegrees;
        if (!(angle > 0 && angle < 180))
            throw json.Place.Child("yfov").Fault("a field of view is greater than 0 and less than pi");
        if (json.TryGet("aspectRatio", out GltfJson ratio))
            camera.AspectRatio = Positive(ratio);
        else
            camera.SetProperty(GltfNames.FreeAspectRatio, true);
        camera.FieldOfViewY = angle;
        camera.NearPlane = json.Require("znear").AsDouble();
        // Without a far plane the view has no end.
        camera.FarPlane = json.Double("zfar", double.PositiveInfinity);
    }

    private static void SetOrthographic(Camera camera, GltfJson json)
    {
        camera.ProjectionType = ProjectionType.Orthographic;
        double x = json.Require("xmag").AsDouble();
        double y = json.Require("ymag").AsDouble();
        if (x == 0 || y == 0)
            throw json.Place.Fault("an orthographic view has an extent in x and y");
        camera.OrthoHeight = 2 * Math.Abs(y);
        camera.AspectRatio = Math.Abs(x / y);
        camera.Magnification = new Vector2(Math.Sign(x), Math.Sign(y));
        camera.NearPlane = json.Require("znear").AsDouble();
        camera.FarPlane = json.Require("zfar").AsDouble();
    }

    private static double Positive(GltfJson value) =>
        value.AsDouble() > 0 ? value.AsDouble()
            : throw value.Place.Fault("a number greater than 0 is expected");

    private static Light MakeLight(GltfJson json)
    {
        string told = json.Require("type").AsString();
        LightType type = told switch
        {
            "point" => LightType.Point,
            "directional" => LightType.Directional,
            "spot" => LightType.Spot,
            _ => throw json.Place.Child("type").Fault($"there is no light type \"{told}\""),
        };
        var light = new Light(json.StringOrNull("name") ?? string.Empty, type)
        {
            Intensity = json.Double("intensity", 1),
        };
        if (json.TryGet("color", out _))
        {
            double[] color = json.Doubles("color", 3);
            light.Color = new Vector3(color[0], color[1], color[2]);
        }
        if (json.TryGet("range", out GltfJson range))
            light.SetProperty(GltfNames.Range, range.AsDouble());
        if (type == LightType.Spot)
        {
            // The document tells the angle from the axis, the entity the angle of the whole cone.
            bool isTold = json.TryGetObject("spot", out GltfJson spot);
            light.HotSpot = 2 * RadianInDegrees * (isTold ? spot.Double("innerConeAngle", 0) : 0);
            light.Falloff = 2 * RadianInDegrees * (isTold ? spot.Double("outerConeAngle", Math.PI / 4)
                : Math.PI / 4);
        }
        GltfExtras.Read(json, light);
        return light;
    }
}
