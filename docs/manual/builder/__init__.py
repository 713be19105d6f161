# SPDX-License-Identifier: GPL-3.0-or-later
"""Builds the manual: chapters in Markdown, with tables and pictures made from what the product itself tells."""
