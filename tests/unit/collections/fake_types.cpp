// Stand-ins for the generated wrappers of the element types: real type objects and the real converter bodies
// over a managed side that never finds a foreign wrapper assignable.

#include "generics_elements.h"
#include "types.h"
#include "wrappers/converters.h"
#include "wrappers/type_object.h"

namespace {

struct NeverAssignable {
    static NeverAssignable get_instance() { return {}; }
    int btp_IsAssignable(const void*) const { return 0; }
};

bool always_valid() {
    return false;
}

}  // namespace

#define FAKE_CLASS(native, python_name)                                                                     \
    PyTypeObject wrpPy_tyds_##native =                                                                      \
        fn_make_class_type({.name = "fake." python_name, .create = fn_wrapper_tp_new<always_valid>});       \
    int wrpPy_conv_py_to_clr_##native(PyObject* value, void** out) {                                        \
        return fn_conv_py_to_clr_class<NeverAssignable>(value, out,                                         \
                                                        {&wrpPy_tyds_##native, python_name, always_valid}); \
    }                                                                                                       \
    PyObject* wrpPy_conv_clr_to_py_##native(void* handle) {                                                 \
        return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_##native);                               \
    }

#define FAKE_STRUCT(native, python_name)                                                                     \
    PyTypeObject wrpPy_tyds_##native =                                                                       \
        fn_make_struct_type({.name = "fake." python_name, .create = fn_wrapper_tp_new<always_valid>});       \
    int wrpPy_conv_py_to_clr_##native(PyObject* value, VariantArg* out) {                                    \
        return fn_conv_py_to_clr_struct<NeverAssignable>(value, out,                                         \
                                                         {&wrpPy_tyds_##native, python_name, always_valid}); \
    }                                                                                                        \
    PyObject* wrpPy_conv_clr_to_py_##native(void* handle) {                                                  \
        return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_##native);                                \
    }

#define FAKE_INTERFACE(native, python_name)                                                           \
    PyTypeObject wrpPy_tyds_##native =                                                                \
        fn_make_class_type({.name = "fake." python_name, .create = fn_wrapper_tp_new<always_valid>}); \
    int wrpPy_conv_py_to_clr_##native(PyObject* value, VariantArg* out) {                             \
        return fn_conv_py_to_clr_interface<NeverAssignable>(                                          \
            value, out, {&wrpPy_tyds_##native, python_name, always_valid});                           \
    }                                                                                                 \
    PyObject* wrpPy_conv_clr_to_py_##native(const PyObjectOutArg& out) {                              \
        return fn_conv_clr_ifcimpl_to_py_ifcimpl(out, &wrpPy_tyds_##native);                          \
    }

FAKE_STRUCT(9F9569E6_Vector2, "Vector2")
FAKE_STRUCT(361B67C0_Vector3, "Vector3")
FAKE_STRUCT(29B75A02_Vector4, "Vector4")
FAKE_CLASS(F437B8C9_Vertex, "Vertex")
FAKE_CLASS(FE65F165_VertexField, "VertexField")
FAKE_CLASS(B9948951_VertexElement, "VertexElement")
FAKE_CLASS(37375028_VbrObject, "VbrObject")
FAKE_CLASS(F44BC945_Node, "Node")
FAKE_CLASS(B2322C55_Scene, "Scene")
FAKE_CLASS(4F4F4155_Entity, "Entity")
FAKE_CLASS(8CFAC268_Mesh, "Mesh")
FAKE_CLASS(C7CA00E0_Material, "Material")
FAKE_CLASS(8A107839_CustomObject, "CustomObject")
FAKE_CLASS(07637985_Bone, "Bone")
FAKE_CLASS(8B4B1CEE_BonePose, "BonePose")
FAKE_CLASS(FD7D0633_Pose, "Pose")
FAKE_CLASS(8927AD99_Deformer, "Deformer")
FAKE_CLASS(3BD44F18_MorphTargetChannel, "MorphTargetChannel")
FAKE_CLASS(29AF0C10_KeyframeSequence, "KeyframeSequence")
FAKE_CLASS(5ED1D8D0_KeyFrame, "KeyFrame")
FAKE_CLASS(E9794787_BindPoint, "BindPoint")
FAKE_CLASS(EC695E95_AnimationClip, "AnimationClip")
FAKE_CLASS(FACCC928_AnimationNode, "AnimationNode")
FAKE_CLASS(ABC6A3BD_Property, "Property")
FAKE_CLASS(1FFB0A0F_TextureSlot, "TextureSlot")
FAKE_CLASS(B85AFE6F_Shape, "Shape")
FAKE_CLASS(F5EAE214_Segment, "Segment")
FAKE_CLASS(F36C42F6_PostProcessing, "PostProcessing")
FAKE_CLASS(3199558B_ShaderTechnique, "ShaderTechnique")
FAKE_CLASS(F4822066_Viewport, "Viewport")
FAKE_INTERFACE(18BDDF85_ITextureUnit, "ITextureUnit")
FAKE_INTERFACE(48DBC66A_ITextureDecoder, "ITextureDecoder")
FAKE_INTERFACE(9A9D199E_ITextureEncoder, "ITextureEncoder")
