using System.Runtime.CompilerServices;

// Every signature that crosses the boundary is blittable. This is also what lets calls through function pointers be
// precompiled instead of waiting for the JIT.
[assembly: DisableRuntimeMarshalling]
