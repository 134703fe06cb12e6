"""Types of the module tessaly; its help() tells the rest."""

from os import PathLike
from types import TracebackType
from typing import Dict, List, Literal, Mapping, Optional, Sequence, Tuple, Type, TypedDict, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray
from typing_extensions import Unpack

__version__: str

Path = Union[str, bytes, "PathLike[str]", "PathLike[bytes]"]
Triple = Union[Tuple[float, float, float], Sequence[float], NDArray[np.floating]]
Color = Triple

class Camera:
    def __init__(
        self,
        *,
        position: Optional[Triple] = None,
        focal_point: Optional[Triple] = None,
        view_up: Optional[Triple] = None,
        view_angle: Optional[float] = None,
        azimuth: Optional[float] = None,
        elevation: Optional[float] = None,
        zoom: Optional[float] = None,
    ) -> None: ...
    def replace(
        self,
        *,
        position: Optional[Triple] = ...,
        focal_point: Optional[Triple] = ...,
        view_up: Optional[Triple] = ...,
        view_angle: Optional[float] = ...,
        azimuth: Optional[float] = ...,
        elevation: Optional[float] = ...,
        zoom: Optional[float] = ...,
    ) -> Camera: ...
    @property
    def position(self) -> Optional[Tuple[float, float, float]]: ...
    @property
    def focal_point(self) -> Optional[Tuple[float, float, float]]: ...
    @property
    def view_up(self) -> Optional[Tuple[float, float, float]]: ...
    @property
    def view_angle(self) -> float: ...
    @property
    def azimuth(self) -> float: ...
    @property
    def elevation(self) -> float: ...
    @property
    def zoom(self) -> float: ...

class TransferPoints(TypedDict):
    opacity: ArrayLike
    color: ArrayLike

TransferFunction = Union[TransferPoints, Mapping[str, ArrayLike], Tuple[ArrayLike, ArrayLike], NDArray, Path]

class Options(TypedDict, total=False):
    size: Optional[Sequence[int]]
    camera: Optional[Union[Camera, Mapping[str, object]]]
    camera_position: Optional[Triple]
    camera_focal_point: Optional[Triple]
    camera_view_up: Optional[Triple]
    camera_view_angle: Optional[float]
    azimuth: Optional[float]
    elevation: Optional[float]
    zoom: Optional[float]
    transfer_function: Optional[TransferFunction]
    opacity_points: Optional[ArrayLike]
    color_points: Optional[ArrayLike]
    preset: Optional[str]
    shading: Optional[Literal["lit", "dvr", "mip", "xray"]]
    emissive: Optional[Color]
    diffuse: Optional[Color]
    specular: Optional[Color]
    shininess: Optional[float]
    gradient_modulation: Optional[bool]
    retained_opacity: Optional[float]
    boundary_opacity: Optional[float]
    opacity_factor: Optional[float]
    background: Optional[Color]
    step: Optional[float]
    ray: Optional[Literal["simple", "interleaved"]]
    geometry: Optional[Literal["boundary", "box"]]
    traversal: Optional[Literal["simple", "block"]]
    normals: Optional[Literal["central", "sobel", "pre"]]
    pre_integrated: Optional[bool]
    opaque: Optional[bool]
    opaque_file: Optional[Path]
    opaque_size: Optional[Triple]
    opaque_center: Optional[Triple]
    opaque_color: Optional[Color]
    max_memory: Optional[float]
    swapped: Optional[bool]

class Viewer:
    def __init__(
        self,
        volume: ArrayLike,
        spacing: Optional[Union[float, Triple]] = None,
        unit: str = "",
        **options: Unpack[Options],
    ) -> None: ...
    @staticmethod
    def from_file(path: Path, **options: Unpack[Options]) -> Viewer: ...
    def render(self) -> NDArray[np.uint8]: ...
    def save(self, path: Path) -> None: ...
    def set(self, **options: Unpack[Options]) -> None: ...
    @property
    def options(self) -> Dict[str, object]: ...
    @property
    def camera(self) -> Camera: ...
    @camera.setter
    def camera(self, camera: Optional[Union[Camera, Mapping[str, object]]]) -> None: ...
    @property
    def placement(self) -> Dict[str, object]: ...
    @property
    def transfer_function(self) -> TransferPoints: ...
    @transfer_function.setter
    def transfer_function(self, function: Optional[TransferFunction]) -> None: ...
    def histogram(self) -> NDArray[np.uint64]: ...
    def positions(self, values: ArrayLike) -> NDArray[np.float64]: ...
    @property
    def shape(self) -> Tuple[int, int, int]: ...
    @property
    def spacing(self) -> Tuple[float, float, float]: ...
    @property
    def notices(self) -> List[str]: ...
    def state(self) -> str: ...
    def save_state(self, path: Path) -> None: ...
    def load_state(self, path: Path) -> None: ...
    def close(self) -> None: ...
    @property
    def closed(self) -> bool: ...
    def __enter__(self) -> Viewer: ...
    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None: ...

def render(
    volume: ArrayLike,
    spacing: Optional[Union[float, Triple]] = None,
    unit: str = "",
    **options: Unpack[Options],
) -> NDArray[np.uint8]: ...
def presets() -> Dict[str, str]: ...
