using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Writes cameras and lights; those with equal values are written once.</summary>
internal sealed class GltfViewWriter
{
    private const double DegreeInRadians = Math.PI / 180;
    private const double DirectionTolerance = 1e-5;

    private readonly GltfDocument _document;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly Dictionary<string, int> _cameraOf = new(StringComparer.Ordinal);
    private readonly Dictionary<string, int> _lightOf = new(StringComparer.Ordinal);
    private readonly JsonArray _lights = [];

    internal GltfViewWriter(GltfDocument document, GltfSaveOptions options, WriteContext context)
    {
        _document = document;
        _options = options;
        _context = context;
    }

    internal void Add(Camera camera, GltfSceneWriter.Place place) =>
        PlaceFor("camera", camera, place, true).Json["camera"] = IndexOf(camera);

    internal void Add(Light light, GltfSceneWriter.Place place)
    {
        GltfSceneWriter.Place own = PlaceFor("light", light, place, light.LightType != LightType.Point);
        _document.AddExtension(own.Json, GltfNames.LightsPunctual,
            new JsonObject { ["light"] = IndexOf(light) });
    }

    /// <summary>Writes the lights, which stand together in an extension of the document.</summary>
    internal void Finish()
    {
        if (_lights.Count > 0)
            _document.Extensions[GltfNames.LightsPunctual] = new JsonObject { ["lights"] = _lights };
    }

    private static GltfSceneWriter.Place PlaceFor(string kind, Frustum view, GltfSceneWriter.Place place,
        bool hasDirection)
    {
        if (!hasDirection)
            return place.With(kind, view.Name);
        Matrix4 global = place.Global;
        Vector3 forward = view.Direction;
        // What is up for a light makes no difference.
        Vector3 up = view is Camera ? Perpendicular(view.Up, forward) : Vector3.Origin;
        Vector3 nodeForward = new Vector3(-global.m20, -global.m21, -global.m22).Normalize();
        Vector3 nodeUp = Perpendicular(new Vector3(global.m10, global.m11, global.m12), nodeForward);
        bool fits = (forward - nodeForward).Length < DirectionTolerance
            && (up.Length == 0 || (up - nodeUp).Length < DirectionTolerance);
        if (fits)
            return place.With(kind, view.Name);
        Quaternion rotation = RotationTo(forward, up);
        global.Decompose(out _, out _, out Quaternion nodeRotation);
        Quaternion local = rotation.Concat(nodeRotation.Inverse());
        return place.Below(view.Name, json => json["rotation"] =
            GltfValues.Numbers(local.x, local.y, local.z, local.w));
    }

    private static Vector3 Perpendicular(Vector3 up, Vector3 forward) =>
        (up - forward * up.Dot(forward)).Normalize();

    private static Quaternion RotationTo(Vector3 forward, Vector3 up)
    {
        Quaternion turn = Quaternion.FromRotation(-Vector3.ZAxis, forward);
        if (up.Length == 0)
            return turn;
        // After the turn the y axis is perpendicular to the view, as up is; what is left is a turn about the
        // view.
        Vector3 y = Vector3.YAxis * turn.ToMatrix();
        double angle = Math.Atan2(y.Cross(up).Dot(forward), y.Dot(up));
        return turn.Concat(Quaternion.FromAngleAxis(angle, forward));
    }

    internal int IndexOf(Camera camera)
    {
        var json = new JsonObject();
        if (camera.Name.Length > 0)
            json["name"] = camera.Name;
        if (camera.ProjectionType == ProjectionType.Orthographic)
            WriteOrthographic(json, camera);
        else
            WritePerspective(json, camera);
        if (_options.SaveExtras)
            GltfExtras.Write(json, camera, static name => name == GltfNames.FreeAspectRatio);
        GltfExtensionData.Write(_document, json, camera);
        string key = json.ToJsonString();
        if (!_cameraOf.TryGetValue(key, out int index))
            _cameraOf[key] = index = _document.Add("cameras", json);
        return index;
    }

    private void WritePerspective(JsonObject json, Camera camera)
    {
        if (!(camera.NearPlane > 0))
            throw _context.Error(
                $"the near plane of the camera '{camera.Name}' is at {camera.NearPlane}; glTF needs a "
                + "distance greater than 0");
        var content = new JsonObject();
        if (camera.GetProperty(GltfNames.FreeAspectRatio) is not true)
            content["aspectRatio"] = GltfValues.Number(camera.AspectRatio);
        content["yfov"] = GltfValues.Factor(camera.FieldOfViewY * DegreeInRadians);
        if (double.IsFinite(camera.FarPlane))
            content["zfar"] = GltfValues.Number(camera.FarPlane);
        content["znear"] = GltfValues.Number(camera.NearPlane);
        json["type"] = "perspective";
        json["perspective"] = content;
    }

    private void WriteOrthographic(JsonObject json, Camera camera)
    {
        if (camera.Magnification.x == 0 || camera.Magnification.y == 0 || !double.IsFinite(camera.FarPlane))
            throw _context.Error(
                $"the orthographic camera '{camera.Name}' has no magnification or no far plane; glTF "
                + "needs both");
        json["type"] = "orthographic";
        json["orthographic"] = new JsonObject
        {
            ["xmag"] = GltfValues.Factor(
                camera.OrthoHeight / 2 * camera.AspectRatio / camera.Magnification.x),
            ["ymag"] = GltfValues.Factor(camera.OrthoHeight / 2 / camera.Magnification.y),
            ["zfar"] = GltfValues.Number(camera.FarPlane),
            ["znear"] = GltfValues.Number(Math.Max(0, camera.NearPlane)),
        };
    }

    internal int IndexOf(Light light)
    {
        var json = new JsonObject();
        if (light.Name.Length > 0)
            json["name"] = light.Name;
        json["type"] = light.LightType switch
        {
            LightType.Point => "point",
            LightType.Directional => "directional",
            LightType.Spot => "spot",
            _ => throw _context.Error(
                $"glTF has no form for a light of the type {light.LightType} ('{light.Name}')"),
        };
        json["color"] = GltfValues.Factors(light.Color.x, light.Color.y, light.Color.z);
        json["intensity"] = GltfValues.Factor(light.CastLight ? light.Intensity : 0);
        if (light.GetProperty(GltfNames.Range) is double range && range > 0)
            json["range"] = GltfValues.Factor(range);
        if (light.LightType == LightType.Spot)
        {
            double outer = Math.Clamp(light.Falloff / 2 * DegreeInRadians, 1e-4, Math.PI / 2);
            // The inner cone must be the smaller one.
            double inner = Math.Clamp(light.HotSpot / 2 * DegreeInRadians, 0, outer * 0.9999);
            json["spot"] = new JsonObject
            {
                ["innerConeAngle"] = GltfValues.Factor(inner),
                ["outerConeAngle"] = GltfValues.Factor(outer),
            };
        }
        if (_options.SaveExtras)
            GltfExtras.Write(json, light, static name => name == GltfNames.Range);
        string key = json.ToJsonString();
        if (!_lightOf.TryGetValue(key, out int index))
        {
            _lightOf[key] = index = _lights.Count;
            _lights.Add((JsonNode)json);
            _document.UseExtension(GltfNames.LightsPunctual);
        }
        return index;
    }
}
