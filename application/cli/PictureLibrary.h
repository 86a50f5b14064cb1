#pragma once

class PictureService;

/**
 * The pictures, from a library that is loaded at the first call: commands that draw nothing start
 * without it.
 * @throw FileError if it cannot be loaded.
 */
const PictureService& pictureLibrary();
