"""Wrappers of managed collections and streams."""
