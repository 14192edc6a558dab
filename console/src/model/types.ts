// The objects of the page, by the schemas that vexorctl and hxraidsvc promise.
export type {
    Adapter, Battery, Change, Disk, Dg, Enclosure, Event, Flash, Gap, Status, StatusCondition, Task, Vd,
    EnclosureElements as Element, EnclosureExpanders as Expander, Error as ApiError,
} from "../../build/schema.ts";
