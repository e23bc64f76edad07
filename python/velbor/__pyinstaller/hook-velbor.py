"""Packs what the native modules load by path: the wrap library and the managed assemblies."""

from PyInstaller.utils.hooks import collect_data_files, collect_dynamic_libs

datas = collect_data_files("velbor")
binaries = collect_dynamic_libs("velbor")
hiddenimports = ["velbor.pyreflection", "velbor.pygc", "velbor.pycore"]
