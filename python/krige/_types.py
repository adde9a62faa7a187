"""Types that signatures share."""

from __future__ import annotations

from typing import Any

import numpy as np
from numpy.typing import NDArray

Array = NDArray[Any]
FloatArray = NDArray[np.float64]
