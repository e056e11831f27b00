"""nvdl: a generic automation client for the NVDL object server.

Objects are created by ProgID and driven late-bound, by member name, through GetIDsOfNames and
Invoke, as scripts drive them:

    import nvdl
    p = nvdl.Dispatch("nv_bench.parameter")
    p.Name = "Gain"
    p.Value = "1.5"
    copy = p.Clone()

Helpers for scripts: nvdl.open(path) gives a loaded project or workspace by the file's class, and
nvdl.to_numpy(m) / nvdl.x_numpy(m) (or m.to_numpy(), m.x_numpy()) a measurement's values and
abscissa as numpy arrays, and nvdl.from_numpy(values, Name=...) a new measurement holding an array.
"""

from . import _nvdl

__all__ = ["Dispatch", "ComError", "Missing", "object_count", "open", "to_numpy", "x_numpy", "from_numpy"]

DISP_E_MEMBERNOTFOUND = 0x80020003
DISP_E_BADPARAMCOUNT = 0x8002000E
DISP_E_PARAMNOTOPTIONAL = 0x8002000F
REGDB_E_CLASSNOTREG = 0x80040154


class ComError(Exception):
    """A failed call: the status (unsigned 32-bit), and the description and source of the error record."""

    def __init__(self, hresult, description="", source=""):
        super().__init__("0x%08X %s" % (hresult, description))
        self.hresult = hresult
        self.description = description
        self.source = source


class _MissingType:
    """Passed where an optional argument is left out."""

    _instance = None

    def __new__(cls):
        if cls._instance is None:
            cls._instance = super().__new__(cls)
        return cls._instance

    def __repr__(self):
        return "nvdl.Missing"


Missing = _MissingType()
_nvdl.set_missing(Missing)


def object_count():
    """The number of live objects of the server."""
    return _nvdl.object_count()


def _unwrap(value):
    return value._handle if isinstance(value, _Proxy) else value


def _wrap(value):
    if isinstance(value, _nvdl.Handle):
        return _Proxy(value)
    if isinstance(value, tuple):
        return tuple(_wrap(v) for v in value)
    return value


def _call(handle, dispid, flags, args):
    status, value = _nvdl.invoke(handle, dispid, flags, tuple(_unwrap(a) for a in args))
    if status == "error":
        raise ComError(*value)
    return _wrap(value)


class _Member:
    """A method, or a property that takes arguments, bound to its object."""

    __slots__ = ("_proxy", "_name", "_dispid")

    def __init__(self, proxy, name, dispid):
        self._proxy = proxy
        self._name = name
        self._dispid = dispid

    def __call__(self, *args):
        flags = _nvdl.DISPATCH_METHOD | _nvdl.DISPATCH_PROPERTYGET
        return _call(self._proxy._handle, self._dispid, flags, args)

    def __repr__(self):
        return "<nvdl member %s>" % self._name


# What is known of the members of each interface, by the key of its type description: name ->
# [dispid, callable], where callable is None until a get has shown whether the member is read as a
# property or must be called (a method, or a property that takes arguments).
_interfaces = {}


class _Proxy:
    __slots__ = ("_handle", "_members")

    def __init__(self, handle):
        object.__setattr__(self, "_handle", handle)
        key = _nvdl.type_key(handle)
        # An object without a type description keeps what it learns to itself.
        members = _interfaces.setdefault(key, {}) if key else {}
        object.__setattr__(self, "_members", members)

    def _member(self, name):
        members = self._members
        known = members.get(name)
        if known is None:
            known = members[name] = [_nvdl.member_id(self._handle, name), None]
        return known

    def _id(self, name):
        return self._member(name)[0]

    def __getattr__(self, name):
        if name.startswith("_") and name != "_NewEnum":
            raise AttributeError(name)
        known = self._member(name)
        dispid = known[0]
        if dispid is None:
            raise AttributeError(name)
        if known[1]:
            return _Member(self, name, dispid)
        status, value = _nvdl.invoke(self._handle, dispid, _nvdl.DISPATCH_PROPERTYGET, ())
        if status == "error":
            if value[0] in (DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTOPTIONAL):
                known[1] = True
                return _Member(self, name, dispid)
            raise ComError(*value)
        known[1] = False
        return _wrap(value)

    def __setattr__(self, name, value):
        if name.startswith("_") and name != "_NewEnum":
            raise AttributeError("%s belongs to the proxy" % name)
        self._put(name, value)

    def _put(self, name, *args):
        """Puts a property; for a property that takes arguments they come first and the value last."""
        dispid = self._id(name)
        if dispid is None:
            raise AttributeError(name)
        by_reference = isinstance(args[-1], _Proxy)
        flags = _nvdl.DISPATCH_PROPERTYPUTREF if by_reference else _nvdl.DISPATCH_PROPERTYPUT
        _call(self._handle, dispid, flags, args)

    def __len__(self):
        return self.Count

    def __getitem__(self, key):
        return self.Item(key)

    def __iter__(self):
        enumerator = _call(self._handle, _nvdl.DISPID_NEWENUM, _nvdl.DISPATCH_PROPERTYGET, ())
        while True:
            try:
                item = enumerator.next()
            except StopIteration:
                return
            yield _wrap(item)

    def __eq__(self, other):
        return isinstance(other, _Proxy) and self._handle.identity() == other._handle.identity()

    def __hash__(self):
        return self._handle.identity()

    def __repr__(self):
        return "<nvdl object at 0x%x>" % self._handle.identity()

    # Helpers of the client, not members of the object: see helpers.py.
    def to_numpy(self):
        return to_numpy(self)

    def x_numpy(self):
        return x_numpy(self)


def Dispatch(progid):
    """Creates an object of the server by ProgID; an unknown ProgID raises ComError."""
    handle = _nvdl.create(progid)
    if isinstance(handle, tuple):
        raise ComError(*handle)
    return _Proxy(handle)


from .helpers import from_numpy, open, to_numpy, x_numpy  # noqa: E402,A001
