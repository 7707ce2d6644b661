// Every class that signatures on low floors name, declared and not defined.
#pragma once

class ClassDesc;
class TObject;
class TDependencySpace;

class TDynamicArray;
class TSortedDynamicArray;
class TSortedList;
class TList;

class QLX_Event;
class QLX_EventRef;
class TToolboxEvent;
class TEvent;
class TEventHandler;
class TBehavior;
class TCommand;
class TCommandHandler;
class TMenuItem;
class TApplication;

class TView;
class TWindow;
class TAdorner;
class TTracker;
class TInvalidateView;
class TControl;

class QLX_PropertySet;
class QLX_PropertyFilter;
class QLX_RawPropertyContainer;
class QLX_ViewMemento;

class QLX_Painter;
class QLX_Font;
class QLX_Image;
class QLX_Icon;
class QLX_Path;
class QLX_Region;
