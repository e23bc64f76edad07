"""The generator: reads catalogue/ and writes both halves of the bridge, the stubs and the reference pages.

Everything that it writes goes to the build tree; nothing that it writes is committed.
"""
