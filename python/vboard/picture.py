"""A picture of the screen, to be looked at by a test."""


class Picture:
    """Pixels as the board composed them: Y, U and V planes of limited range, colour at half the size.

    width, height: pixels, even
    """

    def __init__(self, width, height, planes):
        size = width * height
        if width % 2 or height % 2 or len(planes) != size * 3 // 2:
            raise ValueError(f"{len(planes)} bytes are no picture of {width} x {height}")
        self.width, self.height = width, height
        self._y = planes[:size]
        self._u = planes[size:size + size // 4]
        self._v = planes[size + size // 4:]

    def luma(self, x, y):
        """Brightness of a pixel: 16 is black, 235 is white."""
        self._check(x, y)
        return self._y[y * self.width + x]

    def pixel(self, x, y):
        """Red, green and blue of a pixel, 0 to 255 each (BT.601)."""
        at = y // 2 * (self.width // 2) + x // 2
        scaled = 1.164 * (self.luma(x, y) - 16)
        u, v = self._u[at] - 128, self._v[at] - 128
        colours = (scaled + 1.596 * v, scaled - 0.392 * u - 0.813 * v, scaled + 2.017 * u)
        return tuple(min(255, max(0, round(colour))) for colour in colours)

    def mean_luma(self, region=None):
        """Mean brightness of a region (x, y, width, height), or of the whole."""
        rows = self._rows(region)
        return sum(sum(row) for row in rows) / (len(rows) * len(rows[0]))

    def difference(self, other, region=None, tolerance=16):
        """How much of a region is another brightness than in the other picture by more than `tolerance`, percent."""
        if (self.width, self.height) != (other.width, other.height):
            raise ValueError(f"pictures of {self.width} x {self.height} and {other.width} x {other.height}")
        mine, theirs = self._rows(region), other._rows(region)
        pairs = (pair for row, same in zip(mine, theirs) if row != same for pair in zip(row, same))
        differing = sum(1 for one, another in pairs if abs(one - another) > tolerance)
        return 100 * differing / (len(mine) * len(mine[0]))

    def _check(self, x, y):
        if not (0 <= x < self.width and 0 <= y < self.height):
            raise IndexError(f"{x}, {y} lies outside of {self.width} x {self.height}")

    def _rows(self, region):
        x, y, width, height = region if region is not None else (0, 0, self.width, self.height)
        if width < 1 or height < 1:
            raise ValueError("a region without pixels")
        self._check(x, y)
        self._check(x + width - 1, y + height - 1)
        return [self._y[row * self.width + x:row * self.width + x + width] for row in range(y, y + height)]
