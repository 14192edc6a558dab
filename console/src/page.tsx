// The page: its views by address, and what is told above all of them.
import { Nav, NavItem, NavList } from "@patternfly/react-core/dist/esm/components/Nav/index.js";
import { useEffect, useState, useSyncExternalStore } from "react";
import { _ } from "./host/language.ts";
import { currentHealth, onHealth } from "./host/status.ts";
import { hrefOf } from "./parts/links.tsx";
import { Notices } from "./parts/notices.tsx";
import { Overview, ServiceAlert } from "./views/overview.tsx";

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
    ];
}

function View({ place }: { place: Place }) {
    const health = useSyncExternalStore(onHealth, currentHealth);
    switch (place.path[0] ?? "") {
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
            <Notices />
        </div>
    );
}
