// The page: its views by address, and what is told above all of them.
import { Nav, NavItem, NavList } from "@patternfly/react-core/dist/esm/components/Nav/index.js";
import { useEffect, useState, useSyncExternalStore } from "react";
import { _ } from "./host/language.ts";
import { currentHealth, onHealth } from "./host/status.ts";
import { hrefOf } from "./parts/links.tsx";
import { Notices } from "./parts/notices.tsx";
import { OpenDialog } from "./dialogs/dialogs.tsx";
import { ActivitiesView } from "./views/activities.tsx";
import { Adapters } from "./views/adapters.tsx";
import { Disks, OneDisk } from "./views/disks.tsx";
import { Enclosures } from "./views/enclosures.tsx";
import { Events } from "./views/events.tsx";
import { Overview, ServiceAlert } from "./views/overview.tsx";
import { Replace } from "./views/replace.tsx";
import { VirtualDisk, VirtualDisks } from "./views/virtual_disks.tsx";

interface Place {
    path: string[];
    options: Record<string, string>;
}

function usePlace(): Place {
    const [place, setPlace] = useState<Place>(() => ({ path: cockpit.location.path, options: cockpit.location.options }));
    useEffect(() => {
        cockpit.addEventListener("locationchanged", () =>
            setPlace({ path: cockpit.location.path, options: cockpit.location.options }));
    }, []);
    return place;
}

interface Tab {
    path: string[];
    title: string;
    /** The first parts of the addresses that belong to it. */
    parts: string[];
}

function tabs(): Tab[] {
    return [
        { path: [], title: _("Overview"), parts: ["", "replace"] },
        { path: ["virtual-disks"], title: _("Virtual disks"), parts: ["virtual-disks", "vd"] },
        { path: ["disks"], title: _("Disks"), parts: ["disks", "disk"] },
        { path: ["enclosures"], title: _("Enclosures"), parts: ["enclosures"] },
        { path: ["activities"], title: _("Activities"), parts: ["activities"] },
        { path: ["events"], title: _("Events"), parts: ["events"] },
        { path: ["adapters"], title: _("Adapters"), parts: ["adapters"] },
    ];
}

function View({ place }: { place: Place }) {
    const health = useSyncExternalStore(onHealth, currentHealth);
    const [view, ...parts] = place.path;
    const address = parts.slice(0, 2).join("/");
    switch (view ?? "") {
    case "virtual-disks": return <VirtualDisks />;
    case "vd": return <VirtualDisk key={address} address={address} />;
    case "disks": return <Disks />;
    case "disk": return <OneDisk key={address} address={address} />;
    case "enclosures": return <Enclosures />;
    case "activities": return <ActivitiesView />;
    case "events": return <Events />;
    case "adapters": return <Adapters />;
    case "replace": return <Replace key={address} address={address} serial={place.options["serial"] ?? null} />;
    default: return <><ServiceAlert health={health} /><Overview health={health} /></>;
    }
}

export function Page() {
    const place = usePlace();
    const here = place.path[0] ?? "";
    return (
        <div className="vx-page">
            <Nav variant="horizontal-subnav" aria-label={_("Views")}>
                <NavList>
                    {tabs().map(tab => (
                        <NavItem key={tab.title} isActive={tab.parts.includes(here)} to={hrefOf(tab.path)}
                            onClick={event => {
                                event.preventDefault();
                                cockpit.location.go(tab.path);
                            }}>
                            {tab.title}
                        </NavItem>
                    ))}
                </NavList>
            </Nav>
            <main className="vx-main">
                <h1 className="vx-spoken">{_("RAID")}</h1>
                <View place={place} />
            </main>
            <OpenDialog />
            <Notices />
        </div>
    );
}
